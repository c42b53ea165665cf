#pragma once

#include "decoders/matrix/ltrt_encoder.h"

namespace Lume {

/// Left, right, surround to the two-channel matrix format Lt/Rt, through LtRt.
class LRS2LtRtDecoder : public LtRtEncoder {
public:
    LRS2LtRtDecoder() : LtRtEncoder(LtRt::LRS) {}

    /// Null for any other numbers of channels than 3 to 2.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);
};

}  // namespace Lume
