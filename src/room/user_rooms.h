#pragma once

#include <filesystem>

namespace Lume {

/// Where a user keeps rooms of their own, NAME.room, which every front finds by name: $XDG_DATA_HOME/orvanverb/rooms,
/// usually
/// ~/.local/share/orvanverb/rooms. Empty if the environment names no home. Reads the environment: not on the audio
/// thread.
std::filesystem::path UserRooms();

}  // namespace Lume
