#include "orvanverb/room/room_setup.h"

#include <algorithm>
#include <stdexcept>

#include "geometry/vector_algebra.h"
#include "object/orvanverb.h"
#include "object/orvanverb_class.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/hrtf/ears_options.h"
#include "orvanverb/presets/preset.h"
#include "orvanverb/room/control.h"
#include "orvanverb/room/source_motion.h"
#include "orvanverb/room/state_file.h"

namespace program {

namespace {

/// Sets words that begin with @ apart, each with its values.
std::vector<Options::Setting> SplitAttributes(std::vector<std::string> const& words) {
    orvanverb_main();
    std::vector<Options::Setting> attributes;
    for (std::string const& word : words) {
        if (word.starts_with('@')) {
            attributes.push_back({word.substr(1), {}});
            auto const* const attribute =
                static_cast<max::t_attr*>(max::class_attr_get(orvanverb_class, max::gensym(word.c_str() + 1)));
            if (attribute == nullptr || (attribute->flags & max::ATTR_SET_OPAQUE_USER) != 0)
                throw UsageError(word + ": orvanverb~ has no such attribute; orvanverb attributes lists them");
        } else {
            attributes.back().values.push_back(word);
        }
    }
    return attributes;
}

/// The last value that a name was given, if it was.
std::optional<std::string> LastValue(std::vector<Options::Setting> const& settings, char const* name) {
    std::optional<std::string> value;
    for (Options::Setting const& setting : settings)
        if (setting.name == name && !setting.values.empty()) value = setting.values.front();
    return value;
}

void CheckSettings(std::vector<Options::Setting> const& settings) {
    for (Options::Setting const& setting : settings) {
        try {
            CheckControl(setting.name, setting.values);
        } catch (std::invalid_argument const& error) {
            throw UsageError(std::string("--set: ") + error.what());
        }
    }
}

/// Refuses numbers out of range in options that begin with @. All else is for the object to judge, in its own words:
/// it takes "early width 60" for a control, too.
void CheckAttributes(std::vector<Options::Setting> const& attributes) {
    for (Options::Setting const& attribute : attributes) {
        const bool numbers = std::all_of(attribute.values.begin(), attribute.values.end(),
                                         [](std::string const& word) { return ParseNumber(word).has_value(); });
        if (!numbers || attribute.values.empty() || !IsControl(attribute.name)) continue;
        try {
            CheckControl(attribute.name, attribute.values);
        } catch (std::invalid_argument const& error) {
            throw UsageError(std::string("@") + error.what());
        }
    }
}

/// Sets what an option says.
void Set(RoomObject& room, Options::Setting const& setting, std::string const& option) {
    if (setting.name == "numinternals") return;  // it was part of the shape
    try {
        room.Set(setting.name, setting.values);
    } catch (std::invalid_argument const& error) {
        throw UsageError(option + ": " + error.what());
    }
}

Scene::Listener ListenerFor(RoomObject& room) {
    return [&room](std::string_view message, std::filesystem::path const& folder) {
        room.Tell(message, folder);
        return room.TakeRemarks();
    };
}

std::unique_ptr<RoomObject> NewRoom(unsigned int sources, RoomForm const& form, std::string const& internals,
                                    EarsCache& ears) {
    try {
        return std::make_unique<RoomObject>(sources, form.layout.NumOutputs(), internals, form.format, ears);
    } catch (std::invalid_argument const& error) {
        throw UsageError(std::string("@numinternals: ") + error.what());
    }
}

}  // namespace

RoomSetup::RoomSetup(Options const& options, unsigned int numSources, int samplerate)
    : ears(samplerate, FittingOf(options)),
      sources(numSources),
      attributes(SplitAttributes(options.attributes)),
      directDb(options.directDb),
      roomDb(options.roomDb) {
    CheckAttributes(attributes);
    CheckSettings(options.settings);
    if (options.preset) preset = LoadPreset(FindPreset(*options.preset));
    if (options.state) saved = ReadState(*options.state);
    if (options.scene) scene = Scene(*options.scene);
    ChooseShape(options, numSources);
    if (options.saveState) {
        statePath = *options.saveState;
        if (!options.dryRun) stateFile.emplace(statePath);
    }

    const std::unique_ptr<RoomObject> room = NewRoom(sources, form, internals, ears);
    Arrange(options, *room);
    state = room->State();
    state.vectorSize = options.vectorGiven || !saved || saved->vectorSize == 0 ? options.vectorSize : saved->vectorSize;
    std::vector<Lume::CartesianVector> const& positions = room->Room().SpeakerPositions();
    if (!form.layout.positions.empty() && positions != form.layout.positions)
        form.layout = SpeakerLayout::Of(positions);  // moved from where their names say they are
    scene.Rehearse(ListenerFor(*room));
}

/// The sizes: those typed win over those of a state.
void RoomSetup::ChooseShape(Options const& options, unsigned int numSources) {
    const std::optional<std::string> wantedSources = LastValue(attributes, "numsources");
    if (wantedSources && ParseCount(*wantedSources) != numSources)
        throw UsageError("@numsources " + *wantedSources + ": every channel of every input is a source, here " +
                         std::to_string(numSources));

    const std::optional<std::string> wantedSpeakers = LastValue(attributes, "numspeakers");
    if (wantedSpeakers && !ParseNumber(*wantedSpeakers))
        throw UsageError("@numspeakers: '" + *wantedSpeakers + "' is no number");
    const std::string number = wantedSpeakers ? *wantedSpeakers : saved ? std::to_string(saved->numSpeakers) : "";
    form = RoomForm::Choose(options, number, saved);
    const unsigned int outputs = form.layout.NumOutputs();
    if (options.hrtf && !form.HasEars())
        throw UsageError("--hrtf: is for headphones, two loudspeakers, not " + std::to_string(outputs));
    if (wantedSpeakers && ParseCount(*wantedSpeakers) != outputs)
        throw UsageError("@numspeakers " + *wantedSpeakers + ": --speakers gives " + std::to_string(outputs));

    if (saved) internals = std::to_string(saved->numInternals);
    std::vector<Options::Setting> const* const inOrder[] = {&preset, &options.settings, &attributes};
    for (auto const* const settings : inOrder)
        if (const auto value = LastValue(*settings, "numinternals")) internals = *value;
    if (saved) RequireShape(*options.state);
}

/// A state is for a room of its own sizes.
void RoomSetup::RequireShape(std::string const& path) const {
    const auto require = [&path](std::string const& name, unsigned int told, std::string const& here) {
        if (std::to_string(told) != here)
            throw WorkError(path + ": " + name + " " + std::to_string(told) + ": this rendering has " + here);
    };
    require("numsources", saved->numSources, std::to_string(sources));
    require("numspeakers", saved->numSpeakers, std::to_string(form.layout.NumOutputs()));
    require("numinternals", saved->numInternals, internals);
}

/// Brings a new object to where the rendering begins. What comes later wins.
void RoomSetup::Arrange(Options const& options, RoomObject& room) {
    room.PlaceSources();
    if (!form.layout.positions.empty()) room.PlaceSpeakers(form.layout.positions);
    if (saved) {
        try {
            saved->ears = options.hrtf ? Lume::EarsFile{} : ears.Playable(saved->ears);
            room.Restore(*saved);
        } catch (std::invalid_argument const& error) {
            throw WorkError(*options.state + ": " + error.what());
        }
    }
    if (options.hrtf) {
        try {
            room.LoadHrtf(*options.hrtf);
        } catch (std::invalid_argument const& error) {
            throw WorkError(error.what());
        }
    }
    for (Options::Setting const& setting : preset) Set(room, setting, "--preset");
    for (Options::Setting const& setting : options.settings) Set(room, setting, "--set");
    if (options.orientation) room.Room().SetOrientation(*options.orientation);
    for (Options::SourcePlace const& place : options.sources) {
        RequireSource(place, sources);
        room.PlaceSource(place.number - 1, ToCartesian(place.position));
    }
    for (Options::Setting const& setting : attributes) Set(room, setting, "@" + setting.name);
    for (std::string const& remark : room.TakeRemarks()) Warn(remark);
    for (std::string const& line : scene.Begin(ListenerFor(room))) Warn(line);
    room.RemarkSettings();
    for (std::string const& remark : room.TakeRemarks()) Warn(remark);
}

std::unique_ptr<RoomObject> RoomSetup::MakeRoom() {
    // From nine internal channels on the early gains are spread at random: without a sequence of its own they would
    // depend on how many messages came before.
    orvanverb_seed(1);
    std::unique_ptr<RoomObject> room = NewRoom(sources, form, internals, ears);
    room->Restore(state);
    room->RemarkSettings();
    room->TakeRemarks();  // they were shown
    room->Room().SetDirectLevel(directDb);
    room->Room().SetRoomLevel(roomDb);
    return room;
}

std::vector<std::string> RoomSetup::Play(RoomObject& room, std::uint64_t beforeFrame) {
    const auto rate = static_cast<int>(room.Room().Samplerate());
    std::vector<std::string> lines = scene.Play(ListenerFor(room), rate, beforeFrame);
    room.RemarkSettings();
    for (std::string const& remark : room.TakeRemarks())
        lines.push_back("at " + FixedText(static_cast<double>(beforeFrame) / rate, 2) + " s: " + remark);
    return lines;
}

void RoomSetup::SaveState() {
    if (!stateFile) return;
    Lume::RoomState told = state;
    told.ears = ears.Original(state.ears);
    stateFile->Write(StateText(told, statePath));
}

}  // namespace program
