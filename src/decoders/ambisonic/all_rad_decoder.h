#pragma once

#include <vector>

#include "decoders/decoder.h"
#include "math/real_matrix.h"
#include "mix/signal_matrix.h"

namespace Lume {

/// Ambisonic channels (ACN, SN3D) to loudspeakers that stand irregularly: as if many virtual loudspeakers, evenly all
/// around, played the field with max-rE weights, each panned onto the triangle of real ones around it (Zotter and
/// Frank, "All-round ambisonic panning and decoding", J. Audio Eng. Soc. 60(10), 2012).
///
/// Where no loudspeaker stands within 60 degrees above or below the listener an imaginary one does, whose signal its
/// neighbours play, as loud as gives a wave from there the mean power. The mean over the directions of a wave that are
/// no lower than the loudspeakers is 1. Unlike an inversion of the layout this has no large gains, whatever the layout
/// and the order.
class AllRadDecoder : public Decoder {
public:
    /// Silent until the loudspeakers are set.
    /// @param numChannels  (order + 1)^2
    AllRadDecoder(unsigned int numChannels, unsigned int numOutputs);

    /// Computes the matrix. Allocates, and takes some milliseconds. New gains slide.
    /// @param positions  in the axes of the channels
    void SetLoudspeakerPositions(CartesianVector const* positions) override;

    /// A row per channel, a column per loudspeaker.
    orvandsp::MatrixDouble const& GetDecoderMatrix() const noexcept { return matrix; }

    /// Real-time safe. Outputs must not be inputs.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    /// Does nothing: gains and slides are no audio memory.
    void Clear() override {}

private:
    SignalMatrix mixer;
    orvandsp::MatrixDouble matrix;
};

}  // namespace Lume
