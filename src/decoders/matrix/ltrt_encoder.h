#pragma once

#include "decoders/decoder.h"
#include "decoders/matrix/ltrt.h"

namespace Lume {

/// What the two encoders to Lt/Rt share: each forwards everything to its LtRt.
class LtRtEncoder : public Decoder {
public:
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;
    /// Does nothing.
    void SetLoudspeakerPositions(CartesianVector const* positions) override;

protected:
    explicit LtRtEncoder(LtRt::InputFormat format);

private:
    LtRt encoder;
};

}  // namespace Lume
