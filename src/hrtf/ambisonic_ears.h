#pragma once

#include <vector>

namespace Lume {

/// One impulse response for each ambisonic channel and ear: what a channel sounds like on headphones.
struct AmbisonicEars {
    unsigned int numChannels = 0;
    unsigned int length = 0;   // of a response [samples]
    float latencySamples = 0;  // how much later a sound comes than from a binaural panner
    std::vector<float> left;   // numChannels x length, row by row
    std::vector<float> right;
};

}  // namespace Lume
