#pragma once

#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// One direction of a set: the filters of the ears and the delay between them. A plain record.
struct HrtfPoint {
    CartesianVector position{0.0f, 1.0f, 0.0f};  // direction of measurement
    float itd = 0.0f;                            // as the set has it
    unsigned int numCoefficients = 0;            // of one ear
    unsigned int numChannels = 0;                // ears
    std::vector<float> coefficients;             // numChannels x numCoefficients, ear by ear
    unsigned int index = 0;                      // number of the point, from 0
};

}  // namespace Lume
