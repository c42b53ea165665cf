#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace pd {

/// A room from a file, one NAME VALUE... a line, as the object's attributes are called.
struct RoomFile {
    std::vector<float> controls;  // one for each of Lume::roomControls: what the file doesn't tell at its standard
    unsigned int numInternals;
};

/// @throws std::runtime_error "FILE:LINE: what is wrong"
RoomFile ReadRoomFile(std::filesystem::path const& path);

/// The file that a word means: a path, seen from a folder, or the name of a room.
/// @throws std::runtime_error if there is none
std::filesystem::path FindRoomFile(std::string const& word, std::filesystem::path const& folder);

/// All rooms by name: those in the folder itself, the user's own in $XDG_DATA_HOME/orvanverb/rooms, and those that came
/// with the external.
std::vector<std::filesystem::path> AllRoomFiles(std::filesystem::path const& folder);

}  // namespace pd
