#pragma once

#include <vector>

#include "measure/decay.h"
#include "measure/direct_sound.h"

namespace orvanmeasure {

/// How much a response sounds like noise: the share of samples beyond the local standard deviation, relative to that of
/// Gaussian noise, in a window of 20 ms (J. S. Abel and P. Huang, "A simple, robust measure of reverberation echo
/// density", AES 121, 2006). 0 for single echoes, about 1 for a smooth tail.
struct EchoDensity {
    double stepSeconds = 0.001;
    std::vector<float> values;  ///< from the direct sound on; the mean of all channels
    Figure mixingTime;          ///< when it first reaches 1, behind the direct sound [s]
    Figure nearlyMixed;         ///< when it first reaches 0.9 [s]
};

/// @param begin, end  samples: the direct sound, and where the noise begins
EchoDensity MeasureEchoDensity(Channels response, double sampleRate, std::size_t begin, std::size_t end);

}  // namespace orvanmeasure
