#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "orvanverb/room/room_object.h"

namespace program {

/// What happens in a room while a recording plays: messages, each with the time at which it is due.
///
///     # seconds, then a message as the object takes it
///     source 1 ade -90 3 0          no time: before the first sample
///     0.5 source 1 azim -60
///     2.25 reverb tr0 4
class Scene {
public:
    Scene() = default;
    /// @throws WorkError that names file and line: unreadable, a time that is none, a time without a message
    explicit Scene(std::string const& newPath);

    /// Tells a room what has no time.
    /// @throws WorkError that names file and line, if the room complains
    void Begin(RoomObject& room) const;

    /// Tells a room everything else in one go, to find out whether it would complain.
    /// @throws WorkError as Begin
    void Rehearse(RoomObject& room) const;

    /// Tells a room what is due before a sample, counted from the recording's first, and was not told yet. Complaints
    /// don't end a performance.
    /// @return what the room said
    std::vector<std::string> Play(RoomObject& room, std::uint64_t beforeFrame);

private:
    struct Event {
        double seconds;
        int line;
        std::string message;
    };

    void Tell(RoomObject& room, Event const& event) const;

    std::string path;
    std::vector<Event> start, timed;  // timed: by their times, and in the order of the file where they are equal
    std::size_t next = 0;
};

}  // namespace program
