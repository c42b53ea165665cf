#pragma once

#include "decoders/decoder.h"
#include "mix/signal_matrix.h"

namespace Lume {

/// First-order B-format, with 5 inputs also the two horizontal channels of the second order (W, X, Y, U, V), to any
/// loudspeakers: each takes the sound field in its own direction, and its distance makes no difference. New gains
/// slide.
///
/// The azimuth is the mathematical one. Until the loudspeakers are set it stands on a regular ring.
class AmbisonicDecoder : public Decoder {
public:
    AmbisonicDecoder(unsigned int numInputs, unsigned int numOutputs);

    /// A NullDecoder unless there are 3 to 5 inputs.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override { matrix.Clear(); }
    void SetLoudspeakerPositions(CartesianVector const* positions) override;

    /// The gains of one loudspeaker. @param gains  one per input
    void convert(CartesianVector const& position, float* gains) const;

private:
    SignalMatrix matrix;
};

}  // namespace Lume
