#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "room/room.h"

namespace program {

/// A room in a file: one control a line, NAME VALUE..., as the object's attributes are called. Its first comment says
/// what it is; a comment that begins with "measured:" holds what was measured of it.
struct Preset {
    struct Setting {
        std::string name;
        std::vector<std::string> values;
    };

    std::string name;  // of the file, without its end
    std::filesystem::path path;
    std::string title;     // the first sentence of the first comment; empty without one
    std::string measured;  // "T30 2.01 s, C80 -0.4 dB"; empty if nobody measured it
    std::vector<Setting> settings;

    /// The number behind a word of what was measured: "2.01" behind "T30"; "-" without one.
    std::string Measured(std::string const& word) const;
};

/// @throws WorkError that names the file
Preset ReadPreset(std::filesystem::path const& path);

/// A room with one source, for a ring of eight, in which a preset is set.
/// @throws WorkError for a name or a value that the room doesn't have
std::unique_ptr<Lume::Room> MakeRoom(Preset const& preset);

/// @name Where presets are
/// Presets of one's own come first: $XDG_DATA_HOME/orvanverb/rooms, which is usually ~/.local/share/orvanverb/rooms.
/// Then those that came with the program: beside it, in share/orvanverb/rooms of what it is installed into, or in the
/// tree that it was built from.
/// @{

/// All files that end in .room, by name; of two with one name the first found.
std::vector<std::filesystem::path> AllPresets();

/// The file that a word means: a path if there is such a file, otherwise the name of a preset.
/// @throws WorkError that tells where it was looked for
std::string FindPreset(std::string const& word);
/// @}

}  // namespace program
