#pragma once

#include "decoders/transaural/transaural_decoder_feedforward.h"

namespace Lume {

/// The feed-forward canceller for a symmetric pair of loudspeakers. Its sets hold all six filters, though F1 and F4, F2
/// and F3, F5 and F6 are the same.
class TransauralDecoderFeedforwardSymmetric : public TransauralDecoderFeedforward {
public:
    TransauralDecoderFeedforwardSymmetric(unsigned int numInputs, unsigned int numOutputs);
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);
};

}  // namespace Lume
