#pragma once

#include "decoders/matrix/ltrt_decoder.h"

namespace Lume {

/// The two-channel matrix format Lt/Rt to left, right, surround: the surround is the difference of the two, through
/// SurroundChain.
class LtRt2LRSDecoder : public LtRtDecoder {
public:
    LtRt2LRSDecoder() { initDecoder(2, 3); }

    /// Null for any other numbers of channels than 2 to 3.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
};

}  // namespace Lume
