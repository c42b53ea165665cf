#include "orvanverb-live/room/room_change.h"

#include <memory>

#include "geometry/vector_algebra.h"
#include "hrtf/hrtf.h"

namespace live {

namespace {

using Kind = RoomChange::Kind;

void ComparePlaces(std::vector<Lume::CartesianVector> const& from, std::vector<Lume::CartesianVector> const& to,
                   Kind kind, std::vector<RoomChange>& changes) {
    for (unsigned int i = 0; i < to.size(); ++i)
        if (!(i < from.size() && from[i] == to[i])) changes.push_back({kind, i, to[i]});
}

}  // namespace

std::vector<RoomChange> Difference(Lume::RoomState const& from, Lume::RoomState const& to) {
    std::vector<RoomChange> changes;
    for (unsigned int i = 0; i < to.controls.size(); ++i)
        if (from.controls[i] != to.controls[i]) changes.push_back({Kind::control, i, {to.controls[i], 0.0f, 0.0f}});
    ComparePlaces(from.sources, to.sources, Kind::source, changes);
    ComparePlaces(from.speakers, to.speakers, Kind::speaker, changes);
    if (from.mute != to.mute) changes.push_back({Kind::muting, 0, {to.mute ? 1.0f : 0.0f, 0.0f, 0.0f}});
    if (from.bypass != to.bypass) changes.push_back({Kind::bypassing, 0, {to.bypass ? 1.0f : 0.0f, 0.0f, 0.0f}});
    Lume::Orientation const& head = to.orientation;
    if (from.orientation != head) changes.push_back({Kind::turning, 0, {head.yaw, head.pitch, head.roll}});
    if (from.ears.path != to.ears.path || from.ears.checksum != to.ears.checksum) changes.push_back({Kind::ears});
    return changes;
}

void Apply(Lume::Room& room, RoomChange const& change) {
    switch (change.kind) {
        case Kind::control:
            room.Set(change.index, change.value.x);
            break;
        case Kind::source:
            room.PlaceSource(change.index, change.value);
            break;
        case Kind::speaker:
            room.PlaceSpeaker(change.index, change.value);
            break;
        case Kind::muting:
            room.SetMuted(change.value.x != 0.0f);
            break;
        case Kind::bypassing:
            room.SetBypassed(change.value.x != 0.0f);
            break;
        case Kind::turning:
            room.SetOrientation({change.value.x, change.value.y, change.value.z});
            break;
        case Kind::clearing:
            room.Clear();
            break;
        case Kind::ears:
            break;
    }
}

bool Send(Lume::RoomQueue& queue, RoomChange const& change) {
    switch (change.kind) {
        case Kind::control:
            return queue.Set(change.index, change.value.x);
        case Kind::source:
            return queue.PlaceSource(change.index, change.value);
        case Kind::speaker:
            return queue.PlaceSpeaker(change.index, change.value);
        case Kind::muting:
            return queue.SetMuted(change.value.x != 0.0f);
        case Kind::bypassing:
            return queue.SetBypassed(change.value.x != 0.0f);
        case Kind::turning:
            return queue.SetOrientation({change.value.x, change.value.y, change.value.z});
        case Kind::clearing:
            return queue.Clear();
        case Kind::ears:
            break;
    }
    return true;
}

Lume::Ears PrepareEars(Lume::Room& room, Lume::EarsFile const& file) {
    if (!file.path.empty()) return room.PrepareEars(file.path);
    return {room.Engine().MakeEars(std::make_unique<Lume::Hrtf>(Lume::Hrtf::Builtin(room.Samplerate()))), {}};
}

}  // namespace live
