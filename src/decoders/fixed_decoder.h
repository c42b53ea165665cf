#pragma once

#include "decoders/decoder.h"

namespace Lume {

/// Frame of the decoders that depend on no loudspeaker layout, and have no audio memory unless they say so.
class FixedDecoder : public Decoder {
public:
    /// Does nothing.
    void SetLoudspeakerPositions(CartesianVector const* /*positions*/) override {}
    void SetSamplerate(float newSamplerate) override { samplerate = newSamplerate; }
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override {}
};

}  // namespace Lume
