#pragma once

#include "decoders/transaural/transaural_decoder_feedforward.h"

namespace Lume {

/// The feed-forward canceller for any pair of loudspeakers.
class TransauralDecoderFeedforwardAsymmetric : public TransauralDecoderFeedforward {
public:
    TransauralDecoderFeedforwardAsymmetric(unsigned int numInputs, unsigned int numOutputs);
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);
};

}  // namespace Lume
