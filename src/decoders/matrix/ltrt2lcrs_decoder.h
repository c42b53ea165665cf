#pragma once

#include "decoders/matrix/ltrt_decoder.h"

namespace Lume {

/// The two-channel matrix format Lt/Rt to left, centre, right, surround: the centre is the sum of the two, the surround
/// their difference, through SurroundChain.
class LtRt2LCRSDecoder : public LtRtDecoder {
public:
    LtRt2LCRSDecoder() { initDecoder(2, 4); }

    /// Null for any other numbers of channels than 2 to 4.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
};

}  // namespace Lume
