#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orvanverb/layout/listener_position.h"

namespace program {

/// Reads a file of loudspeaker positions: one AZIMUTH [ELEVATION [DISTANCE]] a line, blank lines and what follows a #
/// left out.
/// @param atMost  positions that the caller can use
/// @throws WorkError that names the file, and the line where there is one: unreadable, malformed, too many
std::vector<ListenerPosition> ReadPositionFile(std::string const& path, std::size_t atMost);

}  // namespace program
