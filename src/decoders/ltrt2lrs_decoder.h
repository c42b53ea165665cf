#pragma once

#include "decoders/fixed_decoder.h"
#include "decoders/surround_chain.h"

namespace Lume {

/// The two-channel matrix format Lt/Rt to left, right, surround: the surround is the difference of the two, through
/// SurroundChain.
class LtRt2LRSDecoder : public FixedDecoder {
public:
    LtRt2LRSDecoder() { initDecoder(2, 3); }

    /// Null for any other numbers of channels than 2 to 3.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    SurroundChain chain;
};

}  // namespace Lume
