#include "decoders/transaural/transaural_decoder_feedforward.h"

namespace Lume {

void TransauralDecoderFeedforward::runNetwork(float** outputs, float** inputs, unsigned long numSamples) {
    float** const free = scratch(numSamples);
    runDifference(free[0], 1, inputs[0], 2, inputs[1], numSamples);
    runDifference(free[1], 4, inputs[1], 3, inputs[0], numSamples);
    runFilter(5, outputs[0], free[0], numSamples);
    runFilter(6, outputs[1], free[1], numSamples);
}

}  // namespace Lume
