#pragma once

#include "decoders/fixed_decoder.h"

namespace Lume {

/// Left, centre, right, surround to left, right, surround: the centre goes to both sides, 3 dB lower.
class LCRS2LRSDecoder : public FixedDecoder {
public:
    LCRS2LRSDecoder() { initDecoder(4, 3); }

    /// Null for any other numbers of channels than 4 to 3.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
};

}  // namespace Lume
