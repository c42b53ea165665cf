#include "decoders/matrix/lrs2ltrt_decoder.h"

namespace Lume {

Decoder* LRS2LtRtDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return numberOfInputs == 3 && numberOfOutputs == 2 ? new LRS2LtRtDecoder : nullptr;
}

}  // namespace Lume
