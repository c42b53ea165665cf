#pragma once

#include <array>
#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"

namespace program {

/// Impulse responses of two ears, as somebody measured them.
struct MeasuredSet {
    struct Ear {
        std::vector<float> response;
        double delaySamples = 0.0;  // that the response doesn't show
    };
    struct Direction {
        Lume::CartesianVector position;  // of the source [m]
        std::array<Ear, 2> ears;         // left, right
    };

    int samplerate = 0;  // [Hz]
    std::vector<Direction> directions;
    std::string owner, subject, copyright, database, date;
};

}  // namespace program
