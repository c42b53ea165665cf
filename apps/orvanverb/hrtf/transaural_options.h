#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace program {

/// What the user asked of a set of filters for two loudspeakers.
struct TransauralOptions {
    struct Pair {
        double leftDeg, rightDeg;  // azimuths as the listener sees them, +90 right
    };

    std::string network;                // as `decode --sub-type` has it
    std::optional<std::size_t> length;  // samples of each filter; none: enough for the rate
    double maxGainDb = 18.0;
    unsigned int blockLength = 2;   // samples, of the recursive networks
    std::optional<double> stepDeg;  // of the grid; none: what suits the network
    std::vector<Pair> pairs;        // none: a grid
};

}  // namespace program
