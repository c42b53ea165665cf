#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "orvanverb/options/options.h"
#include "orvanverb/room/room_object.h"
#include "orvanverb/room/scene.h"

namespace program {

/// Where the sources of a recording stand, and when they move: the built-in places for their number, what the options
/// say, and a scene of messages as an object orvanverb~ takes them. An object keeps the positions, so that all its
/// formats work.
class SourceMotion {
public:
    /// @throws ProgramError that names the option, or file and line
    SourceMotion(unsigned int numSources, std::vector<Options::SourcePlace> const& places,
                 std::optional<std::string> const& scenePath, int samplerate);

    /// What happens before a frame, counted from the recording's first.
    /// @return lines to be shown
    std::vector<std::string> Advance(std::uint64_t beforeFrame);

    std::vector<Lume::CartesianVector> Positions() { return room.SourcePositions(); }

private:
    RoomObject room;
    Scene scene;
};

/// Places sources as options say.
/// @throws UsageError for a source that isn't there
void PlaceSources(RoomObject& room, std::vector<Options::SourcePlace> const& places);

}  // namespace program
