#pragma once

#include "decoders/fixed_decoder.h"
#include "decoders/matrix/surround_chain.h"

namespace Lume {

/// What the two decoders of the two-channel matrix format Lt/Rt share: their surround is the difference of the two
/// channels, through SurroundChain.
class LtRtDecoder : public FixedDecoder {
public:
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

protected:
    SurroundChain chain;
};

}  // namespace Lume
