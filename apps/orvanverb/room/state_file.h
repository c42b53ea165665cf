#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orvanverb/room/room_object.h"

namespace program {

/// A saved state of the object as a text file: one attribute a line, NAME VALUE..., in the order of the state. Numbers
/// read back as the same bits.
class StateFile {
public:
    /// @throws WorkError that names the file and, where there is one, the line
    explicit StateFile(std::string const& newPath);

    /// The value of a size attribute, numsources, numspeakers or numinternals.
    /// @throws WorkError if the file has none
    unsigned int Size(char const* name) const;

    /// Restores the state, after a check of every line against the object's own attributes.
    /// @throws WorkError that names file and line, and says what was expected; the room is as it was
    void Restore(RoomObject& room) const;

    /// Writes the room's present state.
    /// @throws WorkError
    static void Save(std::string const& path, RoomObject& room);

private:
    struct Entry {
        int line;
        std::string name;
        std::vector<max::t_atom> atoms;
    };

    std::string path;
    std::vector<Entry> entries;
};

}  // namespace program
