#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"

namespace lv2 {

/// Where loudspeakers stand, from a file: one AZIMUTH [ELEVATION [DISTANCE]] a line, degrees and metres, # begins a
/// comment. The first line is the first output.
struct SpeakersFile {
    std::string path;
    std::vector<Lume::CartesianVector> positions;
};

/// @throws std::runtime_error "FILE:LINE: what is wrong", also if it doesn't hold that many
SpeakersFile ReadSpeakers(std::filesystem::path const& path, std::size_t number);

}  // namespace lv2
