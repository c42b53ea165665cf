#include "decoders/fixed_decoder.h"

namespace Lume {

void FixedDecoder::SetLoudspeakerPositions(CartesianVector const* /*positions*/) {}

void FixedDecoder::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
}

void FixedDecoder::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
}

void FixedDecoder::Clear() {}

}  // namespace Lume
