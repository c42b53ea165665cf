#pragma once

#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// One pair of loudspeakers of a set: the filters that play binaural signals over it. A plain record.
struct TransauralPoint {
    CartesianVector leftPosition{0.0f, 1.0f, 0.0f};   // of the left loudspeaker
    CartesianVector rightPosition{0.0f, 1.0f, 0.0f};  // of the right one
    unsigned int numCoefficients = 0;                 // of one channel
    unsigned int numChannels = 0;
    float itd = 0.0f;                 // as the set has it
    std::vector<float> coefficients;  // numChannels x numCoefficients, channel by channel
    unsigned int index = 0;           // number of the point, from 0
};

}  // namespace Lume
