#include "decoders/transaural/transaural_decoder_feedforward_symmetric.h"

namespace Lume {

TransauralDecoderFeedforwardSymmetric::TransauralDecoderFeedforwardSymmetric(unsigned int numberOfInputs,
                                                                             unsigned int numberOfOutputs)
    : TransauralDecoderFeedforward(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralFeedForwardSymmetric,
                                   SpeakerPair::symmetric) {}

Decoder* TransauralDecoderFeedforwardSymmetric::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return CreateTransauralDecoder<TransauralDecoderFeedforwardSymmetric>(numberOfInputs, numberOfOutputs);
}

}  // namespace Lume
