#pragma once

#include <string>

#include "room/room_state.h"

namespace program {

/// Reads a state of a room, as --save-state writes it.
/// @throws WorkError that names the file and, where there is one, the line
Lume::RoomState ReadState(std::string const& path);

/// What the file of a state is to hold: the ears' file is named from where the state lies.
std::string StateText(Lume::RoomState const& state, std::string const& path);

}  // namespace program
