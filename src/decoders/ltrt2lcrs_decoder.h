#pragma once

#include "decoders/fixed_decoder.h"
#include "decoders/surround_chain.h"

namespace Lume {

/// The two-channel matrix format Lt/Rt to left, centre, right, surround: the centre is the sum of the two, the surround
/// their difference, through SurroundChain.
class LtRt2LCRSDecoder : public FixedDecoder {
public:
    LtRt2LCRSDecoder() { initDecoder(2, 4); }

    /// Null for any other numbers of channels than 2 to 4.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    SurroundChain chain;
};

}  // namespace Lume
