#include "decoders/matrix/ltrt_decoder.h"

namespace Lume {

void LtRtDecoder::SetSamplerate(float newSamplerate) {
    FixedDecoder::SetSamplerate(newSamplerate);
    chain.SetSamplerate(newSamplerate);
}

void LtRtDecoder::SetMaxBlockSize(unsigned int blockSize) {
    FixedDecoder::SetMaxBlockSize(blockSize);
    chain.SetMaxBlockSize(blockSize);
}

void LtRtDecoder::Clear() {
    chain.Clear();
}

}  // namespace Lume
