#include "decoders/transaural/transaural_decoder_least_squares.h"

#include <algorithm>

namespace Lume {

void TransauralDecoderLeastSquares::runNetwork(float** outputs, float** inputs, unsigned long numSamples) {
    float* const left = scratch(numSamples)[0];  // the outputs may be the inputs
    float* const right = scratch(numSamples)[1];
    runSum(left, 1, inputs[0], 3, inputs[1], numSamples);
    runSum(right, 2, inputs[0], 4, inputs[1], numSamples);
    std::copy_n(left, numSamples, outputs[0]);
    std::copy_n(right, numSamples, outputs[1]);
}

}  // namespace Lume
