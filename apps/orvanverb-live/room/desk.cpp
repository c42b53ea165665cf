#include "orvanverb-live/room/desk.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "engine/room_controls.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/text.h"
#include "orvanverb/presets/preset.h"
#include "orvanverb/room/control.h"

namespace live {

namespace {

using Kind = RoomChange::Kind;

constexpr std::chrono::milliseconds tickTime{40};
constexpr std::size_t maxRemarks = 20;
constexpr char const* builtinName = "built-in";

/// Levels rise at once and fall by 30 dB a second.
void Follow(std::vector<float>& levels, LevelMeter& meter) {
    constexpr float fall = 0.87f;  // of a tick
    for (std::size_t i = 0; i < levels.size(); ++i) levels[i] = std::max(meter.Take(i), fall * levels[i]);
}

bool IsSameThing(RoomChange const& a, RoomChange const& b) {
    return a.kind == b.kind && a.index == b.index;
}

}  // namespace

float LinearGain(float gainDb) {
    return gainDb <= Desk::silentDb ? 0.0f : gainDb == 0.0f ? 1.0f : std::pow(10.0f, gainDb / 20.0f);
}

Desk::Desk(std::unique_ptr<program::RoomObject> newObject, std::size_t newVectorSize, SceneTrack newScene)
    : object(std::move(newObject)),
      numSources(object->Room().NumSources()),
      numOutputs(object->Room().NumSpeakers()),
      vectorSize(newVectorSize),
      scene(std::move(newScene)),
      known(object->State()),
      strips(numSources),
      sourceLevels(numSources),
      outputLevels(numOutputs),
      controlChanged(Lume::roomControls.size(), now),
      sourceChanged(numSources, now) {
    if (!known.ears.path.empty()) earsFiles.push_back(known.ears.path);
    ticker = std::thread([this] {
        while (true) {
            Lock lock(mutex);
            if (ticked.wait_for(lock, tickTime, [this] { return closed; })) return;
            Tick();
        }
    });
}

Desk::~Desk() {
    Close();
    ticker.join();
}

void Desk::Close() {
    const Lock lock(mutex);
    closed = true;
    ticked.notify_all();
}

// Changes

void Desk::RequireSource(unsigned int source) const {
    if (source >= numSources)
        throw std::invalid_argument("there is no source " + std::to_string(source + 1) + ", the last one is " +
                                    std::to_string(numSources));
}

void Desk::Tell(std::string_view message) {
    const std::vector<std::string> words = program::SplitWords(message);
    if (words.empty()) return;
    if (words.front() == "generatexml")
        throw std::invalid_argument("generatexml: writes a file; orvanverb reference does it");
    // Everybody would have to wait for the fit.
    if (words.front() == "hrtf" && (message.ends_with(".sofa") || message.ends_with(".SOFA")))
        throw std::invalid_argument("hrtf: measurements are fitted at the beginning, by --hrtf");
    const Lock lock(mutex);
    object->Tell(message);
    if (words.front() == "clear") Take({Kind::clearing});
    TakeRemarks();
    Reconcile();
}

void Desk::Set(std::size_t control, float value) {
    const Lock lock(mutex);
    object->Set(Lume::roomControls[control].name, {program::NumberText(value)});
    TakeRemarks();
    Reconcile();
}

void Desk::PlaceSource(unsigned int source, Lume::CartesianVector const& position) {
    const Lock lock(mutex);
    RequireSource(source);
    if (!std::isfinite(position.x) || !std::isfinite(position.y) || !std::isfinite(position.z))
        throw std::invalid_argument("a position is not a number");
    const Lume::CartesianVector limited = Lume::Room::Limited(position);
    object->PlaceSource(source, limited);
    known.sources[source] = limited;
    Take({Kind::source, source, limited});
}

void Desk::SetGain(unsigned int source, float gainDb) {
    const Lock lock(mutex);
    RequireSource(source);
    if (std::isnan(gainDb)) throw std::invalid_argument("a gain is not a number");
    strips[source].gainDb = std::clamp(gainDb, silentDb, greatestDb);
    SendGain(source);
}

void Desk::SetSourceMute(unsigned int source, bool muted) {
    const Lock lock(mutex);
    RequireSource(source);
    strips[source].muted = muted;
    SendGain(source);
}

void Desk::SendGain(unsigned int source) {
    sourceChanged[source] = ++now;
    if (player) player->Gains().Set(source, strips[source].muted ? 0.0f : LinearGain(strips[source].gainDb));
}

void Desk::SetName(unsigned int source, std::string name) {
    const Lock lock(mutex);
    RequireSource(source);
    constexpr std::size_t longest = 64;
    name.resize(std::min(name.size(), longest));
    strips[source].name = std::move(name);
    sourceChanged[source] = ++now;
}

void Desk::SetMute(bool muted) {
    Tell(muted ? "mute 1" : "mute 0");
}

void Desk::SetBypass(bool bypassed) {
    Tell(bypassed ? "bypass 1" : "bypass 0");
}

void Desk::SetOrientation(Lume::Orientation const& orientation) {
    const Lock lock(mutex);
    if (!object->Room().SetOrientation(orientation)) throw std::invalid_argument("an angle is not a number");
    Reconcile();
}

void Desk::LoadPreset(std::string const& name) {
    std::vector<std::filesystem::path> const presets = program::AllPresets();
    const auto found =
        std::find_if(presets.begin(), presets.end(), [&](auto const& path) { return path.stem() == name; });
    if (found == presets.end()) throw std::invalid_argument("'" + name + "' is no preset");
    const std::vector<program::Options::Setting> settings = program::LoadPreset(found->string());
    const Lock lock(mutex);
    Lume::RoomState state = known;
    state.controls = Lume::RoomState().controls;
    RestoreKnown(state);
    for (program::Options::Setting const& setting : settings) {
        if (setting.name == "numinternals") {
            if (setting.values.front() != std::to_string(known.numInternals))
                AddRemark(name + ": asks for " + setting.values.front() + " internal channels, this room has " +
                          std::to_string(known.numInternals));
            continue;
        }
        object->Set(setting.name, setting.values);
    }
    TakeRemarks();
    Reconcile();
}

void Desk::LoadState(std::string const& text) {
    Lume::RoomState state;
    try {
        state = Lume::RoomState::Parse(text);
    } catch (std::invalid_argument const& error) {
        throw std::invalid_argument(std::string("the state, line ") + error.what());
    }
    const Lock lock(mutex);
    object->Restore(state);
    TakeRemarks();
    Reconcile();
}

std::vector<std::string> Desk::EarsNames() const {
    const Lock lock(mutex);
    std::vector<std::string> names;
    if (!object->Room().HasEars()) return names;
    names.emplace_back(builtinName);
    for (std::filesystem::path const& file : earsFiles) names.push_back(file.filename().string());
    return names;
}

std::string Desk::EarsName() const {
    const Lock lock(mutex);
    return known.ears.path.empty() ? builtinName : known.ears.path.filename().string();
}

void Desk::UseEars(std::string const& name) {
    const Lock lock(mutex);
    if (name == builtinName) {
        Lume::RoomState state = known;
        state.ears = {};
        RestoreKnown(state);
    } else {
        const auto found =
            std::find_if(earsFiles.begin(), earsFiles.end(), [&](auto const& file) { return file.filename() == name; });
        if (found == earsFiles.end()) throw std::invalid_argument("'" + name + "' are no ears that were loaded");
        object->LoadHrtf(*found);
    }
    Reconcile();
}

/// Brings the object to a state that differs little from its own: there is nothing to tell of it.
void Desk::RestoreKnown(Lume::RoomState const& state) {
    object->Restore(state);
    object->TakeRemarks();
}

/// Sends what the object's state has other than it had.
void Desk::Reconcile() {
    Lume::RoomState state = object->State();
    const std::vector<RoomChange> changes = Difference(known, state);
    known = std::move(state);
    for (RoomChange const& change : changes) Take(change);
}

void Desk::Take(RoomChange const& change) {
    Mark(change);
    if (change.kind == Kind::ears) {
        SendEars(known.ears);
        return;
    }
    if (!player) return;
    const auto waits = std::find_if(pending.begin(), pending.end(),
                                    [&](RoomChange const& other) { return IsSameThing(other, change); });
    if (waits != pending.end())
        waits->value = change.value;
    else if (!pending.empty() || !Send(player->Queue(), change))
        pending.push_back(change);
}

void Desk::Flush() {
    const auto unsent = std::find_if(pending.begin(), pending.end(),
                                     [this](RoomChange const& change) { return !Send(player->Queue(), change); });
    pending.erase(pending.begin(), unsent);
}

void Desk::SendEars(Lume::EarsFile const& file) {
    if (!file.path.empty() && std::find(earsFiles.begin(), earsFiles.end(), file.path) == earsFiles.end())
        earsFiles.push_back(file.path);
    if (player) player->Queue().SendEars(PrepareEars(player->Room(), file));
}

void Desk::Mark(RoomChange const& change) {
    ++now;
    switch (change.kind) {
        case Kind::control:
            controlChanged[change.index] = now;
            break;
        case Kind::source:
            sourceChanged[change.index] = now;
            break;
        case Kind::speaker:
            speakersChanged = now;
            break;
        case Kind::muting:
            mutingChanged = now;
            break;
        case Kind::bypassing:
            bypassingChanged = now;
            break;
        case Kind::turning:
            turningChanged = now;
            break;
        case Kind::ears:
            earsChanged = now;
            break;
        case Kind::clearing:
            break;
    }
}

// How things are

Lume::RoomState Desk::State() const {
    const Lock lock(mutex);
    Lume::RoomState state = known;
    state.vectorSize = vectorSize;
    return state;
}

std::string Desk::StateText(std::filesystem::path const& folder) const {
    return State().Text(folder);
}

Strip Desk::StripOf(unsigned int source) const {
    const Lock lock(mutex);
    RequireSource(source);
    return strips[source];
}

News Desk::NewsSince(std::uint64_t& seen) const {
    const Lock lock(mutex);
    News news;
    news.state = known;
    news.strips = strips;
    for (unsigned int i = 0; i < controlChanged.size(); ++i)
        if (controlChanged[i] > seen) news.controls.push_back(i);
    for (unsigned int i = 0; i < numSources; ++i)
        if (sourceChanged[i] > seen) news.sources.push_back(i);
    news.speakers = speakersChanged > seen;
    news.muting = mutingChanged > seen;
    news.bypassing = bypassingChanged > seen;
    news.turning = turningChanged > seen;
    news.ears = earsChanged > seen;
    for (RemarkLine const& line : remarks)
        if (line.changed > seen && seen > 0) news.remarks.push_back(line.text);
    news.status = status;
    news.sourceLevels = sourceLevels;
    news.outputLevels = outputLevels;
    seen = now;
    return news;
}

bool Desk::WaitForTick(std::uint64_t& tick) const {
    Lock lock(mutex);
    ticked.wait(lock, [&] { return closed || ticks != tick; });
    tick = ticks;
    return !closed;
}

void Desk::TakeRemarks() {
    for (std::string const& line : object->TakeRemarks()) AddRemark(line);
}

void Desk::AddRemark(std::string const& line) {
    program::Say(line);
    if (remarks.size() == maxRemarks) remarks.erase(remarks.begin());
    remarks.push_back({++now, line});
}

void Desk::Remark(std::string const& line) {
    const Lock lock(mutex);
    AddRemark(line);
}

// The room that plays

Player& Desk::Attach(int samplerate, std::size_t blockSize) {
    const Lume::RoomState begin = State();
    auto made = std::make_unique<Player>(begin, samplerate, blockSize, vectorSize, scene, sceneSeen, secondsPlayed);
    const Lock lock(mutex);
    player = std::move(made);
    for (unsigned int i = 0; i < numSources; ++i)
        player->Gains().Begin(i, strips[i].muted ? 0.0f : LinearGain(strips[i].gainDb));
    // What came meanwhile.
    for (RoomChange const& change : Difference(begin, known)) Take(change);
    status.rate = samplerate;
    status.block = blockSize;
    status.latency = player->Room().Latency();
    if (const std::string remark = player->Room().EarsRemark(); !remark.empty()) AddRemark(remark);
    return *player;
}

void Desk::Detach() {
    const Lock lock(mutex);
    if (!player) return;
    FollowScene();
    secondsPlayed = player->Seconds();
    pending.clear();
    player.reset();
    status.rate = 0;
    status.load = 0.0f;
    std::fill(sourceLevels.begin(), sourceLevels.end(), 0.0f);
    std::fill(outputLevels.begin(), outputLevels.end(), 0.0f);
}

void Desk::SetStatus(std::string text, long xruns) {
    const Lock lock(mutex);
    status.text = std::move(text);
    status.xruns = xruns;
}

/// The scene acts on the playing room by itself; here the object and those who follow hear of it.
void Desk::FollowScene() {
    for (const std::size_t played = player->ScenePlayed(); sceneSeen < played; ++sceneSeen) {
        SceneTrack::Event const& event = scene.Events()[sceneSeen];
        Lume::RoomState state = known;
        for (RoomChange const& change : event.changes) {
            Mark(change);
            switch (change.kind) {
                case Kind::control:
                    state.controls[change.index] = change.value.x;
                    break;
                case Kind::source:
                    state.sources[change.index] = change.value;
                    break;
                case Kind::speaker:
                    state.speakers[change.index] = change.value;
                    break;
                case Kind::muting:
                    state.mute = change.value.x != 0.0f;
                    break;
                case Kind::bypassing:
                    state.bypass = change.value.x != 0.0f;
                    break;
                case Kind::turning:
                    state.orientation = event.after.orientation;
                    break;
                case Kind::ears:
                    state.ears = event.ears;
                    break;
                case Kind::clearing:
                    break;
            }
        }
        RestoreKnown(state);
        known = std::move(state);
    }
}

void Desk::Tick() {
    ++ticks;
    if (player) {
        FollowScene();
        Flush();
        Follow(sourceLevels, player->SourceLevels());
        Follow(outputLevels, player->OutputLevels());
        status.load = player->TakeLoad();
        status.numBad = player->NumBadSamples();
    }
    ticked.notify_all();
}

}  // namespace live
