#pragma once

#include "decoders/fixed_decoder.h"
#include "dsp/audio_buffer.h"
#include "dsp/hilbert_transform.h"

namespace Lume {

/// B-format (W, X, Y, and Z with 4 inputs) to UHJ: the stereo-compatible pair left and right, with 3 outputs the third
/// channel T, and with 4 the fourth channel Q (Gerzon, "Ambisonics in multichannel broadcasting and video", J. Audio
/// Eng. Soc. 33(11), 1985).
///
/// X points ahead and Y to the left, as UHJ has it. The gains of W and X in the sum act twice, which makes X fall
/// behind W: it sets the width of the image (kept: quirks.md 29).
class Bformat2UHJDecoder : public FixedDecoder {
public:
    /// For the numbers of channels that Create takes.
    Bformat2UHJDecoder(unsigned int numInputs, unsigned int numOutputs);

    /// Null for other numbers of channels than 3 or 4 to 2 or 3, and 4 to 4.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Clears the outputs when W, X or Y is inactive. Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    orvandsp::HilbertTransform hilbertW, hilbertX;
    orvandsp::AudioBuffer buffer;  // the pair of W, then the pair of X
};

}  // namespace Lume
