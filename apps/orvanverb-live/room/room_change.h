#pragma once

#include <vector>

#include "geometry/cartesian_vector.h"
#include "room/room.h"
#include "room/room_queue.h"
#include "room/room_state.h"

namespace live {

/// One thing about a room that is other than it was.
struct RoomChange {
    enum class Kind : unsigned char {
        control,
        source,
        sourceGain,
        sourceMute,
        sourceName,
        speaker,
        muting,
        bypassing,
        turning,
        ears,
        clearing
    };
    static constexpr std::size_t numKinds = static_cast<std::size_t>(Kind::clearing) + 1;

    Kind kind = Kind::control;
    unsigned int index = 0;            ///< of the control, the source or the loudspeaker
    Lume::CartesianVector value = {};  ///< a number or a switch in x; the listener's yaw, pitch and roll; ears and
                                       ///< names go another way
};

/// What one state has other than another of the same sizes.
std::vector<RoomChange> Difference(Lume::RoomState const& from, Lume::RoomState const& to);

/// Brings it to a room. Audio thread; real-time safe.
void Apply(Lume::Room& room, RoomChange const& change);

/// Brings it to a state, where it fits.
/// @param after  a state that has it, for what a change itself doesn't hold
void Apply(Lume::RoomState& state, RoomChange const& change, Lume::RoomState const& after);

/// Sends it to a room. @return false if the queue is full
bool Send(Lume::RoomQueue& queue, RoomChange const& change);

/// Makes ears for a running room as a state names them, also the built-in ones.
/// @throws std::runtime_error as Room::PrepareEars
Lume::Ears PrepareEars(Lume::Room& room, Lume::EarsFile const& file);

}  // namespace live
