#include "decoders/transaural/transaural_decoder_shuffler_symmetric.h"

#include "dsp/vector_operations.h"

namespace Lume {

TransauralDecoderShufflerSymmetric::TransauralDecoderShufflerSymmetric(unsigned int numberOfInputs,
                                                                       unsigned int numberOfOutputs)
    : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralShufflerSymmetric, 2,
                                SpeakerPair::symmetric) {}

Decoder* TransauralDecoderShufflerSymmetric::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return CreateTransauralDecoder<TransauralDecoderShufflerSymmetric>(numberOfInputs, numberOfOutputs);
}

void TransauralDecoderShufflerSymmetric::Process(float** outputs, float** inputs, unsigned long numSamples,
                                                 short const* activeInputs) {
    if (!canProcess(activeInputs)) {
        Mute(outputs, numSamples);
        return;
    }
    orvandsp::SumDiff(outputs[0], outputs[1], inputs[0], inputs[1], numSamples);
    runFilter(1, outputs[0], outputs[0], numSamples);
    runFilter(2, outputs[1], outputs[1], numSamples);
    orvandsp::SumDiffMul(outputs[0], outputs[1], orvandsp::sqrt2, numSamples);
}

}  // namespace Lume
