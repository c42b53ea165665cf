#include "decoders/transaural/transaural_decoder_shuffler_asymmetric.h"

#include "dsp/vector_operations.h"

namespace Lume {

TransauralDecoderShufflerAsymmetric::TransauralDecoderShufflerAsymmetric(unsigned int numberOfInputs,
                                                                         unsigned int numberOfOutputs)
    : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralShufflerAsymmetric, 6,
                                SpeakerPair::asymmetric) {}

Decoder* TransauralDecoderShufflerAsymmetric::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return CreateTransauralDecoder<TransauralDecoderShufflerAsymmetric>(numberOfInputs, numberOfOutputs);
}

void TransauralDecoderShufflerAsymmetric::Process(float** outputs, float** inputs, unsigned long numSamples,
                                                  short const* activeInputs) {
    if (!canProcess(activeInputs)) {
        Mute(outputs, numSamples);
        return;
    }
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
