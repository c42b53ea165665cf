#include "decoders/transaural/transaural_decoder_least_squares.h"

#include <algorithm>

namespace Lume {

TransauralDecoderLeastSquares::TransauralDecoderLeastSquares(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralLeastSquares, 4,
                                SpeakerPair::asymmetric) {}

Decoder* TransauralDecoderLeastSquares::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return CreateTransauralDecoder<TransauralDecoderLeastSquares>(numberOfInputs, numberOfOutputs);
}

void TransauralDecoderLeastSquares::Process(float** outputs, float** inputs, unsigned long numSamples,
                                            short const* activeInputs) {
    if (!canProcess(activeInputs)) {
        Mute(outputs, numSamples);
        return;
    }
    float* const left = scratch(numSamples)[0];  // the outputs may be the inputs
    float* const right = scratch(numSamples)[1];
    runSum(left, 1, inputs[0], 3, inputs[1], numSamples);
    runSum(right, 2, inputs[0], 4, inputs[1], numSamples);
    std::copy_n(left, numSamples, outputs[0]);
    std::copy_n(right, numSamples, outputs[1]);
}

}  // namespace Lume
