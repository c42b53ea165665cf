#pragma once

#include "decoders/fixed_decoder.h"
#include "dsp/audio_buffer.h"
#include "dsp/hilbert_transform.h"

namespace Lume {

/// UHJ (left, right, and with more inputs T and Q) to B-format (W, X, Y, and Z with 4 outputs), after Gerzon,
/// "Ambisonics in multichannel broadcasting and video", J. Audio Eng. Soc. 33(11), 1985.
///
/// From three or four channels W holds a weighted difference alone and no sum (kept: quirks.md 30).
class UHJ2BformatDecoder : public FixedDecoder {
public:
    /// For the numbers of channels that Create takes.
    UHJ2BformatDecoder(unsigned int numInputs, unsigned int numOutputs);

    /// Null for other numbers of channels than 2, 3 or 4 to 3, and 4 to 4.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Clears the outputs when left or right is inactive. Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    orvandsp::HilbertTransform hilbertSum, hilbertDifference, hilbertT;
    orvandsp::AudioBuffer buffer;  // the pairs of sum, difference and T
};

}  // namespace Lume
