#pragma once

#include "decoders/matrix/ltrt_encoder.h"

namespace Lume {

/// Left, centre, right, surround to the two-channel matrix format Lt/Rt, through LtRt.
class LCRS2LtRtDecoder : public LtRtEncoder {
public:
    LCRS2LtRtDecoder() : LtRtEncoder(LtRt::LCRS) {}

    /// Null for any other numbers of channels than 4 to 2.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);
};

}  // namespace Lume
