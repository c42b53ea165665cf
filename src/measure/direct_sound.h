#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace orvanmeasure {

/// A response of one or more channels of equal length, planar. Samples are finite.
using Channels = std::span<std::span<float const> const>;

/// Where a response begins.
struct DirectSound {
    std::size_t sample = 0;       ///< the first one within 20 dB of the greatest, as ISO 3382-1 has it
    double directToRestDb = 0.0;  ///< energy up to 2.5 ms behind it over all the energy after that, all channels
};

/// @return nothing if all channels are silent
std::optional<DirectSound> FindDirectSound(Channels response, double sampleRate);

}  // namespace orvanmeasure
