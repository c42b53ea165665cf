#include "common/hosted_room.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <system_error>
#include <utility>

#include "dsp/floating_point_mode.h"
#include "geometry/vector_algebra.h"
#include "object/message_remarks.h"
#include "object/orvanverb.h"
#include "object/orvanverb_class.h"
#include "object/room_exchange.h"
#include "room/file_checksum.h"
#include "room/setting_remarks.h"

namespace plugin {

using orvandsp::FloatingPointMode;

namespace {

/// Of the room's random numbers: those of the host are its own.
constexpr std::uint32_t randomSeed = 1;

std::vector<max::t_atom> BoxWords(std::vector<max::t_atom> words) {
    orvanverb_main();
    orvanverb_seed(randomSeed);
    max::t_atom name{};
    max::atom_setsym(&name, max::gensym("orvanverb~"));
    words.insert(words.begin(), name);
    return words;
}

bool Contains(std::vector<max::t_atom> const& words, char const* word) {
    return std::any_of(words.begin(), words.end(), [word](max::t_atom const& atom) {
        return std::strcmp(max::atom_getsym(&atom)->s_name, word) == 0;
    });
}

}  // namespace

/// What was said, so that it isn't said again.
struct HostedRoom::Remarks {
    orvanverb::MessageRemarks messages;
    Lume::SettingRemarks settings;
    std::vector<Lume::CartesianVector> speakers;
    bool positions = false;
};

HostedRoom::HostedRoom(std::vector<max::t_atom> words, max::BoxListener newListener)
    : listener(std::move(newListener)), remarks(std::make_unique<Remarks>()) {
    const FloatingPointMode unchanged;
    const bool sources = !Contains(words, "@sourcespositions"), speakers = !Contains(words, "@speakerspositions");
    RemarkOnRanges(words);
    box = std::make_unique<max::Box>(BoxWords(std::move(words)), listener);
    record = orvanverb_record(box->Object());
    if (!IsMade()) return;
    Room().Engine().SilenceAirOnRestart(true);
    orvanverb_place_defaults(record, sources, speakers);
    for (std::string const& remark : remarks->settings.Of(Room(), false)) Warn(remark);
}

/// The object brings what its box says into range without a word.
void HostedRoom::RemarkOnRanges(std::vector<max::t_atom> const& words) {
    const auto isName = [](max::t_atom const& atom) { return max::atom_getsym(&atom)->s_name[0] == '@'; };
    for (auto name = std::find_if(words.begin(), words.end(), isName); name != words.end();) {
        const auto next = std::find_if(name + 1, words.end(), isName);
        for (std::string const& remark :
             remarks->messages.OfRange(max::atom_getsym(&*name)->s_name + 1, {name + 1, next}))
            Warn(remark);
        name = next;
    }
}

HostedRoom::~HostedRoom() {
    if (loadingEars.valid()) loadingEars.wait();  // the loader reads the room's rate
}

Lume::Room& HostedRoom::Room() const {
    return orvanverb_room(record);
}

bool HostedRoom::SetOrientation(float yaw, float pitch, float roll) {
    return Room().SetOrientation({yaw, pitch, roll});
}

std::size_t HostedRoom::NumInputs() const {
    return Room().NumSources();
}

std::size_t HostedRoom::NumOutputs() const {
    return Room().NumSpeakers();
}

std::size_t HostedRoom::BlockSize() const {
    return Room().BlockSize();
}

std::uint64_t HostedRoom::NumReplaced() const {
    return Room().NumBadInputs();
}

std::uint64_t HostedRoom::NumSilenced() const {
    return Room().NumBadOutputs();
}

Lume::RoomState HostedRoom::NamedState() {
    if (loadingEars.valid()) {
        loadingEars.wait();
        try {
            TakeEars();
        } catch (std::runtime_error const& error) {
            Warn(error.what());
        }
    }
    Lume::RoomState state = orvanverb_save_state(record);
    if (UsesMeasurements()) state.ears = fitting.Measurements();
    return state;
}

void HostedRoom::Tell(max::ConsoleLevel level, std::string const& text) const {
    if (listener.console) listener.console(level, text);
}

bool HostedRoom::Send(char const* selector, std::vector<max::t_atom> atoms) {
    const FloatingPointMode unchanged;
    for (std::string const& remark : remarks->messages.Of(*record, selector, atoms)) Warn(remark);
    const std::vector<Lume::CartesianVector> sources = orvanverb_source_positions(record);
    const bool understood = box->Send(max::gensym(selector), std::move(atoms));
    if (orvanverb_limit_positions(record, sources) && !std::exchange(remarks->positions, true))
        Warn("positions are limited to " + Lume::NumberText(Lume::Room::maxCoordinate) + " m");
    return understood;
}

void HostedRoom::RemarkSettings() {
    const std::vector<Lume::CartesianVector> speakers = Room().SpeakerPositions();
    const bool moved = std::exchange(remarks->speakers, speakers) != speakers;
    for (std::string const& line : remarks->settings.Of(Room(), moved)) Warn(line);
}

std::optional<std::vector<max::t_atom>> HostedRoom::Value(std::string const& name) {
    if (auto values = box->GetAttribute(name.c_str())) return values;
    const std::optional<std::size_t> control = Lume::FindControl(name);
    if (!control) return std::nullopt;
    max::t_atom atom{};
    max::atom_setfloat(&atom, static_cast<double>(Room().Get(*control)));
    return std::vector{atom};
}

std::vector<max::t_atom> HostedRoom::State() {
    return box->GetState();
}

void HostedRoom::Restore(std::vector<max::t_atom> state) {
    const FloatingPointMode unchanged;
    box->SetState(std::move(state));
}

void HostedRoom::Restore(Lume::RoomState state) {
    if (loadingEars.valid()) loadingEars.wait();
    loadingEars = {};
    Lume::EarsFile measurements;
    if (EarsFitting::IsFor(state.ears.path)) measurements = std::exchange(state.ears, Room().CurrentEars());
    Lume::EarsFile const& known = fitting.Measurements();
    const bool same = UsesMeasurements() && measurements.path == known.path && measurements.checksum == known.checksum;
    if (!same) fitting.GiveUp();
    try {
        orvanverb_restore_state(record, state);
    } catch (std::runtime_error const& error) {
        Warn(error.what());
        state.ears = Room().CurrentEars();
        orvanverb_restore_state(record, state);
    }
    for (std::string const& line : state.unknown)
        Warn("the state has a line that this version doesn't know and keeps: " + line);
    if (!measurements.path.empty() && !same) Fit(measurements);
}

bool HostedRoom::UsesMeasurements() const {
    return fitting.IsBusy() || (!fitting.Set().empty() && Room().CurrentEars().path == fitting.Set());
}

void HostedRoom::LoadEars(std::filesystem::path const& file) {
    fitting.GiveUp();
    if (!EarsFitting::IsFor(file)) return LoadSet(file);
    if (!std::filesystem::exists(file))
        throw std::runtime_error(file.string() + ": " + std::generic_category().message(ENOENT));
    Fit({std::filesystem::absolute(file), Lume::FileChecksum(file)});
}

void HostedRoom::Fit(Lume::EarsFile const& measurements) {
    if (!Room().HasEars())
        throw std::runtime_error(measurements.path.string() + ": ears are for headphones, and this room plays " +
                                 std::to_string(NumOutputs()) + " loudspeakers");
    fitting.Begin(measurements, sampleRate > 0.0f ? sampleRate : expectedRate);
}

void HostedRoom::LoadSet(std::filesystem::path const& file) {
    if (sampleRate == 0.0f) return Room().LoadEars(file);
    if (loadingEars.valid()) loadingEars.wait();
    earsFile = file;
    loadingEars = std::async(std::launch::async, [&room = Room(), file] { return room.PrepareEars(file); });
}

bool HostedRoom::TakeEars() {
    const bool fits = fitting.IsBusy();
    std::optional<std::filesystem::path> set = fitting.Take();
    for (auto const& [level, text] : fitting.TakeLines()) Tell(level, text);
    if (set) LoadSet(*set);
    if (fits && !set) return false;
    if (!loadingEars.valid()) return true;
    if (loadingEars.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return false;
    Lume::Ears ears = loadingEars.get();
    if (!Room().TakeEars(ears)) Room().LoadEars(earsFile);  // the rate has changed meanwhile
    return true;
}

void HostedRoom::Start(float newSampleRate, std::size_t blockSize) {
    const FloatingPointMode unchanged;
    if (loadingEars.valid()) loadingEars.wait();
    sampleRate = newSampleRate;
    Room().Configure(sampleRate, blockSize);
    if (UsesMeasurements() && fitting.Samplerate() != sampleRate) Fit(Lume::EarsFile(fitting.Measurements()));
}

void HostedRoom::Process(float const* const* inputs, float* const* outputs) {
    Lume::Room& room = Room();
    room.Process(outputs, inputs, room.BlockSize());
}

}  // namespace plugin
