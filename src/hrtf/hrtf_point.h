#pragma once

#include <cmath>
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

/// Whether a file may call this the delay between two ears [ms]. It becomes the length of delay lines, two for each
/// source: a second is a thousand times what a head makes of it, and still a line of modest size.
inline bool IsInterauralDelay(float milliseconds) {
    constexpr float longest = 1000.0f;
    return std::abs(milliseconds) <= longest;
}

}  // namespace Lume
