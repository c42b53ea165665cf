#include "decoders/matrix/surround_decoder.h"

#include "decoders/matrix/lcrs2lrs_decoder.h"
#include "decoders/matrix/lcrs2ltrt_decoder.h"
#include "decoders/matrix/lrs2lcrs_decoder.h"
#include "decoders/matrix/lrs2ltrt_decoder.h"
#include "decoders/matrix/ltrt2lcrs_decoder.h"
#include "decoders/matrix/ltrt2lrs_decoder.h"
#include "decoders/null_decoder.h"

namespace Lume {

Decoder* CreateSurroundDecoder(unsigned int numInputs, unsigned int numOutputs) {
    // Each makes itself for its own pair of counts, and null for any other.
    for (auto* create : {LtRt2LRSDecoder::Create, LtRt2LCRSDecoder::Create, LRS2LtRtDecoder::Create,
                         LRS2LCRSDecoder::Create, LCRS2LtRtDecoder::Create, LCRS2LRSDecoder::Create})
        if (Decoder* const decoder = create(numInputs, numOutputs)) return decoder;
    return NullDecoder::Create(numInputs, numOutputs);
}

}  // namespace Lume
