#pragma once

#include <optional>

#include "room/room.h"

namespace program {

/// How loud the direct sound is against all that the room answers: the energies of what each makes of an impulse in one
/// source, in all outputs together [dB]. Infinite if one of them is switched off.
/// @param room  that was started, with its levels; it is of no use behind this
/// @return nothing for a room that never decays, or doesn't sound
std::optional<double> DirectToRoomDb(Lume::Room& room, unsigned int source);

}  // namespace program
