#include "orvanverb-live/room/room_change.h"

#include <memory>

#include "geometry/vector_algebra.h"
#include "hrtf/hrtf.h"

namespace live {

namespace {

using Kind = RoomChange::Kind;

Lume::CartesianVector Number(float value) {
    return {value, 0.0f, 0.0f};
}

Lume::CartesianVector Switch(bool on) {
    return Number(on ? 1.0f : 0.0f);
}

void ComparePlaces(std::vector<Lume::CartesianVector> const& from, std::vector<Lume::CartesianVector> const& to,
                   Kind kind, std::vector<RoomChange>& changes) {
    for (unsigned int i = 0; i < to.size(); ++i)
        if (!(i < from.size() && from[i] == to[i])) changes.push_back({kind, i, to[i]});
}

void CompareStrips(std::vector<Lume::SourceStrip> const& from, std::vector<Lume::SourceStrip> const& to,
                   std::vector<RoomChange>& changes) {
    for (unsigned int i = 0; i < to.size(); ++i) {
        const Lume::SourceStrip before = i < from.size() ? from[i] : Lume::SourceStrip{};
        if (before.gainDb != to[i].gainDb) changes.push_back({Kind::sourceGain, i, Number(to[i].gainDb)});
        if (before.muted != to[i].muted) changes.push_back({Kind::sourceMute, i, Switch(to[i].muted)});
        if (before.name != to[i].name) changes.push_back({Kind::sourceName, i});
    }
}

/// Calls of a target what the change is about: a room and its queue have the same operations.
template <typename Target>
void Hand(Target& target, RoomChange const& change) {
    const auto& [kind, index, value] = change;
    const bool on = value.x != 0.0f;
    switch (kind) {
        case Kind::control:
            target.Set(index, value.x);
            break;
        case Kind::source:
            target.PlaceSource(index, value);
            break;
        case Kind::sourceGain:
            target.SetSourceGain(index, value.x);
            break;
        case Kind::sourceMute:
            target.SetSourceMuted(index, on);
            break;
        case Kind::speaker:
            target.PlaceSpeaker(index, value);
            break;
        case Kind::muting:
            target.SetMuted(on);
            break;
        case Kind::bypassing:
            target.SetBypassed(on);
            break;
        case Kind::turning:
            target.SetOrientation({value.x, value.y, value.z});
            break;
        case Kind::clearing:
            target.Clear();
            break;
        case Kind::sourceName:
        case Kind::ears:
            break;
    }
}

/// A state, as far as a scene changes it: in the operations that a room has.
struct StateTarget {
    void Set(unsigned int control, float value) const { state.controls[control] = value; }
    void PlaceSource(unsigned int source, Lume::CartesianVector const& p) const { state.sources[source] = p; }
    void SetSourceGain(unsigned int source, float gainDb) const { state.strips[source].gainDb = gainDb; }
    void SetSourceMuted(unsigned int source, bool muted) const { state.strips[source].muted = muted; }
    void PlaceSpeaker(unsigned int speaker, Lume::CartesianVector const& p) const { state.speakers[speaker] = p; }
    void SetMuted(bool muted) const { state.mute = muted; }
    void SetBypassed(bool bypassed) const { state.bypass = bypassed; }
    void SetOrientation(Lume::Orientation const& head) const { state.orientation = head; }
    void Clear() const {}

    Lume::RoomState& state;
};

}  // namespace

std::vector<RoomChange> Difference(Lume::RoomState const& from, Lume::RoomState const& to) {
    std::vector<RoomChange> changes;
    for (unsigned int i = 0; i < to.controls.size(); ++i)
        if (from.controls[i] != to.controls[i]) changes.push_back({Kind::control, i, Number(to.controls[i])});
    ComparePlaces(from.sources, to.sources, Kind::source, changes);
    ComparePlaces(from.speakers, to.speakers, Kind::speaker, changes);
    CompareStrips(from.strips, to.strips, changes);
    if (from.mute != to.mute) changes.push_back({Kind::muting, 0, Switch(to.mute)});
    if (from.bypass != to.bypass) changes.push_back({Kind::bypassing, 0, Switch(to.bypass)});
    Lume::Orientation const& head = to.orientation;
    if (from.orientation != head) changes.push_back({Kind::turning, 0, {head.yaw, head.pitch, head.roll}});
    if (from.ears.path != to.ears.path || from.ears.checksum != to.ears.checksum) changes.push_back({Kind::ears});
    return changes;
}

void Apply(Lume::Room& room, RoomChange const& change) {
    Hand(room, change);
}

void Apply(Lume::RoomState& state, RoomChange const& change, Lume::RoomState const& after) {
    const StateTarget target{state};
    Hand(target, change);
    if (change.kind == Kind::ears) state.ears = after.ears;
}

bool Send(Lume::RoomQueue& queue, RoomChange const& change) {
    const std::uint64_t lost = queue.NumLost();
    Hand(queue, change);
    return queue.NumLost() == lost;
}

Lume::Ears PrepareEars(Lume::Room& room, Lume::EarsFile const& file) {
    if (!file.path.empty()) return room.PrepareEars(file.path);
    return {room.Engine().MakeEars(std::make_unique<Lume::Hrtf>(Lume::Hrtf::Builtin(room.Samplerate()))), {}};
}

}  // namespace live
