#pragma once

#include "dsp/audio_buffer.h"
#include "filters/biquad_cascade.h"
#include "filters/hl_shelf.h"
#include "filters/low_pass.h"

namespace Lume {

/// Encoder from left, (centre,) right and surround to the two-channel matrix format Lt/Rt.
///
/// The surround enters both channels, in opposite phase, about 90 degrees off the front channels: front and surround
/// pass through allpass networks of different phase. Their coefficients are fixed numbers, so the band in which the
/// phases differ by 90 degrees moves with the sample rate.
class LtRt : public orvandsp::SignalProcessing {
public:
    /// The input channels: left, right, surround, or left, centre, right, surround.
    enum InputFormat : int { LRS = 3, LCRS = 4 };

    explicit LtRt(InputFormat format);

    /// The outputs may be the input arrays. Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    template <typename Operation>
    void ForEachFilter(Operation operation);

    orvandsp::AudioBuffer scratch;
    InputFormat inputFormat;
    HLShelf shelf;
    LowPass lowPass;
    BiquadCascade left1, left2, right1, right2, surround1, surround2;
};

}  // namespace Lume
