#pragma once

#include "decoders/fixed_decoder.h"

namespace Lume {

/// Left, right, surround to left, centre, right, surround: the centre is what both sides share. Not the inverse of
/// LCRS2LRSDecoder.
class LRS2LCRSDecoder : public FixedDecoder {
public:
    LRS2LCRSDecoder() { initDecoder(3, 4); }

    /// Null for any other numbers of channels than 3 to 4.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
};

}  // namespace Lume
