#include "decoders/transaural/transaural_decoder_shuffler.h"

#include "dsp/vector_operations.h"

namespace Lume {

void TransauralDecoderShufflerSymmetric::runNetwork(float** outputs, float** inputs, unsigned long numSamples) {
    orvandsp::SumDiff(outputs[0], outputs[1], inputs[0], inputs[1], numSamples);
    runFilter(1, outputs[0], outputs[0], numSamples);
    runFilter(2, outputs[1], outputs[1], numSamples);
    orvandsp::SumDiffMul(outputs[0], outputs[1], orvandsp::sqrt2, numSamples);
}

void TransauralDecoderShufflerAsymmetric::runNetwork(float** outputs, float** inputs, unsigned long numSamples) {
    float** const free = scratch(numSamples);
    float* const s = free[0];
    float* const d = free[1];
    float* const u = free[2];
    float* const v = free[3];
    orvandsp::SumDiff(s, d, inputs[0], inputs[1], numSamples);
    runSum(u, 1, d, 3, s, numSamples);
    runDifference(v, 4, s, 2, d, numSamples);
    runFilter(5, outputs[0], u, numSamples);
    runFilter(6, outputs[1], v, numSamples);
}

}  // namespace Lume
