#include "orvanverb-live/room/desk.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "engine/room_controls.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/text.h"
#include "orvanverb/hrtf/sofa_file.h"
#include "orvanverb/presets/preset.h"
#include "orvanverb/room/control.h"

namespace live {

namespace {

using Kind = RoomChange::Kind;

constexpr std::chrono::milliseconds tickTime{40};
constexpr std::size_t maxRemarks = 20;
constexpr char const* builtinName = "built-in";

/// Levels rise at once and fall by 30 dB a second.
void Follow(std::vector<float>& levels, LevelMeter& meter, auto const& gainOf) {
    constexpr float fall = 0.87f;  // of a tick
    for (std::size_t i = 0; i < levels.size(); ++i) levels[i] = std::max(gainOf(i) * meter.Take(i), fall * levels[i]);
}

bool IsSameThing(RoomChange const& a, RoomChange const& b) {
    return a.kind == b.kind && a.index == b.index;
}

}  // namespace

Desk::Desk(std::unique_ptr<program::RoomObject> newObject, program::EarsCache& newCache, std::size_t newVectorSize,
           SceneTrack newScene)
    : object(std::move(newObject)),
      numSources(object->Room().NumSources()),
      numOutputs(object->Room().NumSpeakers()),
      vectorSize(newVectorSize),
      scene(std::move(newScene)),
      known(object->State()),
      sourceLevels(numSources),
      outputLevels(numOutputs),
      cache(newCache) {
    for (std::vector<std::uint64_t>& times : changed) times.assign(1, now);
    Changes(Kind::control).resize(Lume::roomControls.size(), now);
    Changes(Kind::source).resize(numSources, now);
    if (!known.ears.path.empty()) Know(cache.Original(known.ears), known.ears.path);
    for (SceneTrack::Event const& event : scene.Events())
        if (!event.ears.path.empty()) Know(cache.Original(event.ears), event.ears.path);
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
    if (words.front() == "hrtf" && program::IsSofa(words.back())) {
        // All the rest is the file's name, which may hold blanks.
        std::string file(message.substr(message.find("hrtf") + 4));
        file.erase(0, file.find_first_not_of(" \t"));
        return LoadMeasurements(file);
    }
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
    if (!object->Room().SetSourceGain(source, gainDb)) throw std::invalid_argument("a gain is not a number");
    Reconcile();
}

void Desk::SetSourceMute(unsigned int source, bool muted) {
    const Lock lock(mutex);
    RequireSource(source);
    object->Room().SetSourceMuted(source, muted);
    Reconcile();
}

void Desk::SetName(unsigned int source, std::string const& name) {
    const Lock lock(mutex);
    RequireSource(source);
    object->Room().SetSourceName(source, name);
    Reconcile();
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
    const std::string ears = state.ears.path.string();
    if (program::IsSofa(ears)) {
        LoadBeside(ears, [this, state = std::move(state)]() mutable {
            const Lume::EarsFile told = state.ears;
            state.ears = cache.Playable(told);
            const Lock lock(mutex);
            Know(told, state.ears.path);
            RestoreState(state);
        });
        return;
    }
    const Lock lock(mutex);
    RestoreState(state);
}

void Desk::RestoreState(Lume::RoomState const& state) {
    object->Restore(state);
    TakeRemarks();
    Reconcile();
}

void Desk::LoadMeasurements(std::string const& file) {
    if (!object->Room().HasEars()) throw std::invalid_argument("hrtf: is for headphones");
    LoadBeside(file, [this, file] {
        const std::filesystem::path played = cache.Playable(std::filesystem::path(file));
        const Lume::EarsFile told = cache.Original({played, 0});
        const Lock lock(mutex);
        Know(told, played);
        object->LoadHrtf(played);
        TakeRemarks();
        Reconcile();
    });
}

/// Ears may have to be fitted, for which nobody else waits. Whether they are known is soon found out.
void Desk::LoadBeside(std::string const& what, std::function<void()> load) {
    if (std::error_code none; !std::filesystem::is_regular_file(what, none))
        throw std::invalid_argument(what + ": there is no such file");
    worker.Do([this, what, load = std::move(load)] {
        Remark(what + ": the ears are made ready, which takes up to minutes if they are new");
        try {
            load();
            Remark(what + ": the ears are there");
        } catch (std::exception const& error) {
            Remark(error.what());
        }
    });
}

void Desk::Know(Lume::EarsFile const& told, std::filesystem::path const& played) {
    const bool isKnown =
        std::any_of(knownEars.begin(), knownEars.end(), [&](KnownEars const& ears) { return ears.played == played; });
    if (!isKnown) knownEars.push_back({told, played});
}

/// What people named, of ears that play.
Lume::EarsFile Desk::ToldOf(Lume::EarsFile const& ears) const {
    for (KnownEars const& some : knownEars)
        if (some.played == ears.path && some.told.path != some.played) return some.told;
    return ears;
}

std::vector<std::string> Desk::EarsNames() const {
    const Lock lock(mutex);
    std::vector<std::string> names;
    if (!object->Room().HasEars()) return names;
    names.emplace_back(builtinName);
    for (KnownEars const& ears : knownEars) names.push_back(ears.told.path.filename().string());
    return names;
}

std::string Desk::EarsName() const {
    const Lock lock(mutex);
    return known.ears.path.empty() ? builtinName : ToldOf(known.ears).path.filename().string();
}

void Desk::UseEars(std::string const& name) {
    const Lock lock(mutex);
    if (name == builtinName) {
        Lume::RoomState state = known;
        state.ears = {};
        RestoreKnown(state);
    } else {
        const auto found = std::find_if(knownEars.begin(), knownEars.end(),
                                        [&](KnownEars const& ears) { return ears.told.path.filename() == name; });
        if (found == knownEars.end()) throw std::invalid_argument("'" + name + "' are no ears that were loaded");
        object->LoadHrtf(found->played);
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
    if (!file.path.empty()) Know(file, file.path);
    if (player) player->Queue().SendEars(PrepareEars(player->Room(), file));
}

std::vector<std::uint64_t>& Desk::Changes(Kind kind) {
    return changed[static_cast<std::size_t>(kind)];
}

void Desk::Mark(RoomChange const& change) {
    // What a source has of its own is told together.
    const bool isStrip =
        change.kind == Kind::sourceGain || change.kind == Kind::sourceMute || change.kind == Kind::sourceName;
    std::vector<std::uint64_t>& times = Changes(isStrip ? Kind::source : change.kind);
    times[times.size() > 1 ? change.index : 0] = ++now;
}

// How things are

Lume::RoomState Desk::State() const {
    const Lock lock(mutex);
    Lume::RoomState state = known;
    state.vectorSize = vectorSize;
    return state;
}

Lume::RoomState Desk::StateToKeep() const {
    Lume::RoomState state = State();
    const Lock lock(mutex);
    state.ears = ToldOf(state.ears);
    return state;
}

Lume::SourceStrip Desk::StripOf(unsigned int source) const {
    const Lock lock(mutex);
    RequireSource(source);
    return known.strips[source];
}

News Desk::NewsSince(std::uint64_t& seen) const {
    const Lock lock(mutex);
    News news;
    news.state = known;
    const auto hasChanged = [&](Kind kind, std::size_t index = 0) {
        return changed[static_cast<std::size_t>(kind)][index] > seen;
    };
    for (unsigned int i = 0; i < Lume::roomControls.size(); ++i)
        if (hasChanged(Kind::control, i)) news.controls.push_back(i);
    for (unsigned int i = 0; i < numSources; ++i)
        if (hasChanged(Kind::source, i)) news.sources.push_back(i);
    news.muting = hasChanged(Kind::muting);
    news.bypassing = hasChanged(Kind::bypassing);
    news.turning = hasChanged(Kind::turning);
    news.ears = hasChanged(Kind::ears);
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
    object->RemarkSettings();
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
            Apply(state, change, event.after);
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
        Follow(sourceLevels, player->SourceLevels(), [this](std::size_t i) { return known.strips[i].Gain(); });
        Follow(outputLevels, player->OutputLevels(), [](std::size_t) { return 1.0f; });
        status.load = player->TakeLoad();
        status.numBad = player->NumBadSamples();
    }
    ticked.notify_all();
}

}  // namespace live
