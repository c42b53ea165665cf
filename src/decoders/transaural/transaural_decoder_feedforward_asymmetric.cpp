#include "decoders/transaural/transaural_decoder_feedforward_asymmetric.h"

namespace Lume {

TransauralDecoderFeedforwardAsymmetric::TransauralDecoderFeedforwardAsymmetric(unsigned int numberOfInputs,
                                                                               unsigned int numberOfOutputs)
    : TransauralDecoderFeedforward(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralFeedForwardAsymmetric,
                                   SpeakerPair::asymmetric) {}

Decoder* TransauralDecoderFeedforwardAsymmetric::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return CreateTransauralDecoder<TransauralDecoderFeedforwardAsymmetric>(numberOfInputs, numberOfOutputs);
}

}  // namespace Lume
