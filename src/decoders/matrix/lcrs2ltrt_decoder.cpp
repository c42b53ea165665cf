#include "decoders/matrix/lcrs2ltrt_decoder.h"

namespace Lume {

Decoder* LCRS2LtRtDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return numberOfInputs == 4 && numberOfOutputs == 2 ? new LCRS2LtRtDecoder : nullptr;
}

}  // namespace Lume
