#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

#include "orvanverb-live/room/room_change.h"
#include "orvanverb/room/room_object.h"

namespace live {

/// A scene's messages with times, worked out before anything plays: what each changes about the room. Messages that go
/// from where a source is, as "source 1 azim++ 5", go from where the scene itself has put it.
class SceneTrack {
public:
    struct Event {
        double seconds = 0.0;
        std::vector<RoomChange> changes;
        Lume::EarsFile ears;  ///< if there is a change of ears
        Lume::RoomState after;
    };

    SceneTrack() = default;
    /// @param object  a room as it is when the scene begins; used up
    /// @throws program::WorkError that names the scene and the line
    SceneTrack(std::string const& path, program::RoomObject& object);

    std::vector<Event> const& Events() const noexcept { return events; }

private:
    std::vector<Event> events;
};

/// A scene on its way through one room.
class ScenePlayer {
public:
    /// Prepares everything that the rest of a scene needs.
    /// @param from  events that have happened
    ScenePlayer(SceneTrack const& track, std::size_t from, Lume::Room& room);

    /// Brings to the room what is due before a frame, counted from the beginning. Audio thread; real-time safe.
    void Advance(Lume::Room& room, double beforeSeconds) noexcept;

    /// How many events have happened. Any thread.
    std::size_t NumPlayed() const noexcept { return next.load(std::memory_order_acquire); }

private:
    std::vector<SceneTrack::Event> const& events;
    std::vector<Lume::Ears> ears;  // one for each event, most of them empty
    std::atomic<std::size_t> next;
};

}  // namespace live
