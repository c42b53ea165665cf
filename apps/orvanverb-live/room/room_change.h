#pragma once

#include <vector>

#include "geometry/cartesian_vector.h"
#include "room/room.h"
#include "room/room_queue.h"
#include "room/room_state.h"

namespace live {

/// One thing about a room that is other than it was.
struct RoomChange {
    enum class Kind : unsigned char { control, source, speaker, muting, bypassing, turning, ears, clearing };

    Kind kind = Kind::control;
    unsigned int index = 0;            ///< of the control, the source or the loudspeaker
    Lume::CartesianVector value = {};  ///< a control's or a switch's in x; the listener's yaw, pitch and roll; ears
                                       ///< go another way
};

/// What one state has other than another of the same sizes.
std::vector<RoomChange> Difference(Lume::RoomState const& from, Lume::RoomState const& to);

/// Brings it to a room. Audio thread; real-time safe.
void Apply(Lume::Room& room, RoomChange const& change);

/// Sends it to a room. @return false if the queue is full
bool Send(Lume::RoomQueue& queue, RoomChange const& change);

/// Makes ears for a running room as a state names them, also the built-in ones.
/// @throws std::runtime_error as Room::PrepareEars
Lume::Ears PrepareEars(Lume::Room& room, Lume::EarsFile const& file);

}  // namespace live
