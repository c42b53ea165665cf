#include "orvanverb/room/room_setup.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "object/orvanverb.h"
#include "object/orvanverb_class.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/presets/preset.h"
#include "orvanverb/room/control.h"
#include "orvanverb/room/source_motion.h"

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

void Tell(RoomObject& room, Options::Setting const& setting, std::string const& option) {
    if (setting.name == "numinternals") return;  // it was part of the shape
    try {
        room.Tell(setting.name + " " + JoinWords(setting.values));
    } catch (std::invalid_argument const& error) {
        throw UsageError(option + ": " + error.what());
    }
}

bool AreEqual(Lume::CartesianVector const& a, Lume::CartesianVector const& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

std::unique_ptr<RoomObject> NewRoom(unsigned int sources, unsigned int speakers, std::string const& internals) {
    try {
        return std::make_unique<RoomObject>(sources, speakers, internals);
    } catch (std::invalid_argument const& error) {
        throw UsageError(std::string("@numinternals: ") + error.what());
    }
}

}  // namespace

RoomSetup::RoomSetup(Options const& options, unsigned int numSources)
    : sources(numSources), attributes(SplitAttributes(options.attributes)) {
    CheckSettings(options.settings);
    if (options.preset) preset = LoadPreset(FindPreset(*options.preset));
    if (options.state) stateFile.emplace(*options.state);
    if (options.scene) scene = Scene(*options.scene);
    ChooseShape(options, numSources);

    const std::unique_ptr<RoomObject> room =
        NewRoom(sources, static_cast<unsigned int>(layout.positions.size()), internals);
    Arrange(options, *room);
    state = room->State();
    if (options.saveState) StateFile::Save(*options.saveState, *room);
    const std::vector<Lume::CartesianVector> positions = room->SpeakerPositions();
    if (!std::equal(positions.begin(), positions.end(), layout.positions.begin(), AreEqual))
        layout = SpeakerLayout::InEngineOrder(positions);  // moved from where their names say they are
    for (std::string const& remark : room->TakeRemarks()) std::fprintf(stderr, "%s\n", remark.c_str());
    scene.Rehearse(*room);
}

/// The sizes: those typed win over those of a state.
void RoomSetup::ChooseShape(Options const& options, unsigned int numSources) {
    const std::optional<std::string> wantedSources = LastValue(attributes, "numsources");
    if (wantedSources && ParseCount(*wantedSources) != numSources)
        throw UsageError("@numsources " + *wantedSources + ": every channel of every input is a source, here " +
                         std::to_string(numSources));

    std::string speakers = options.speakers.value_or(stateFile ? std::to_string(stateFile->Size("numspeakers"))
                                                               : std::string(defaultSpeakers));
    const std::optional<std::string> wantedSpeakers = LastValue(attributes, "numspeakers");
    if (wantedSpeakers && !options.speakers) {
        if (!ParseNumber(*wantedSpeakers)) throw UsageError("@numspeakers: '" + *wantedSpeakers + "' is no number");
        speakers = *wantedSpeakers;
    }
    layout = SpeakerLayout::Parse(speakers);
    if (options.hrtfSet && layout.positions.size() != 2)
        throw UsageError("--hrtf: is for headphones, two loudspeakers, not " + std::to_string(layout.positions.size()));
    hrtfSet = options.hrtfSet;
    if (wantedSpeakers && ParseCount(*wantedSpeakers) != layout.positions.size())
        throw UsageError("@numspeakers " + *wantedSpeakers + ": --speakers gives " +
                         std::to_string(layout.positions.size()));

    if (stateFile) internals = std::to_string(stateFile->Size("numinternals"));
    std::vector<Options::Setting> const* const inOrder[] = {&preset, &options.settings, &attributes};
    for (auto const* const settings : inOrder)
        if (const auto value = LastValue(*settings, "numinternals")) internals = *value;
}

/// Brings a new object to where the rendering begins. What comes later wins.
void RoomSetup::Arrange(Options const& options, RoomObject& room) {
    room.PlaceSources();
    room.PlaceSpeakers(layout.positions);
    if (stateFile) stateFile->Restore(room);
    for (Options::Setting const& setting : preset) Tell(room, setting, "--preset");
    for (Options::Setting const& setting : options.settings) Tell(room, setting, "--set");
    PlaceSources(room, options.sources);
    for (Options::Setting const& setting : attributes) Tell(room, setting, "@" + setting.name);
    scene.Begin(room);
}

std::unique_ptr<RoomObject> RoomSetup::MakeRoom() const {
    // From nine internal channels on the early gains are spread at random: without a sequence of its own they would
    // depend on how many messages came before.
    orvanverb_seed(1);
    std::unique_ptr<RoomObject> room = NewRoom(sources, static_cast<unsigned int>(layout.positions.size()), internals);
    if (hrtfSet) room->LoadHrtf(*hrtfSet);
    room->Restore(state);
    return room;
}

}  // namespace program
