#pragma once

#include <memory>

#include "decoders/transaural/transaural_decoder.h"
#include "dsp/ramp.h"
#include "filters/delay.h"
#include "filters/faded_biquad_cascade.h"
#include "filters/tap_out.h"
#include "hrtf/hrtf_data.h"

namespace Lume {

/// The recursive canceller for a symmetric pair of loudspeakers that makes its filters itself, from a set of binaural
/// ones: the built-in set, or any other in second-order sections. It works on the sum and the difference of the ears'
/// signals, sample by sample, so that the loop may be as short as the crosstalk is late.
///
/// With Hi z^-i and Hc z^-c the responses from a loudspeaker to its near and its far ear, as minimum-phase cascades and
/// delays, and d = c - i, the loudspeakers have to send the sum s / (Hi + Hc z^-d) and the difference
/// t / (Hi - Hc z^-d), which are the loops
///
///     s' = s / Hi - z^-d (Hc / Hi) s', t' = t / Hi + z^-d (Hc / Hi) t'.
///
/// So 1 / Hi stands at the entrance of each loop, and Hc followed by 1 / Hi within it, all from the direction of the
/// left loudspeaker. But for the order of the latter two, no other placing of the cascades of a point and of their
/// inverses gives the ears the inputs back; and 1 / Hi, the near ear's cascade turned over, is stable because the
/// cascades are minimum-phase. Where the near ear has a notch above the range in which crosstalk can be cancelled (near
/// 14 kHz from 35 to 45 degrees), Hc / Hi may exceed 1 and the loop would run away: LimitLoopGain flattens such peaks
/// within the loops.
///
/// On a KEMAR manikin the built-in set takes 18.8 dB off the crosstalk at 30 degrees, on average from 200 Hz to 8 kHz
/// on a logarithmic axis (21.5 dB at 20, 13.5 dB at 40 degrees): the excess phase that a delay can't stand for is what
/// is left.
///
/// Signals above full scale in the loops are set to 0, a limiter of last resort. As the outputs are the sum and the
/// difference of the loops, they are twice what the ears are to hear: leave 6 dB of headroom, and more for strong
/// differences at low frequencies, which the loop raises.
///
/// New sets and loudspeakers fade and glide.
class TransauralDecoderRecursiveSymmetricBiquads : public TransauralDecoder {
public:
    static constexpr float DefaultCrossGain = 1.0f;

    TransauralDecoderRecursiveSymmetricBiquads(unsigned int numInputs, unsigned int numOutputs);
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    bool LoadFromFile(char const* path) override;
    /// True for second-order sections alone: the loop needs minimum-phase filters that can be inverted.
    bool CanProcessThisTypeOfFilter(HrtfFilterType type) const override { return type == hrtfBiquadCells; }
    unsigned int getExpectedNumberOfFiltersInHrtfFiles() const override { return 2; }
    HrtfType getExpectedHrtfTypeInHrtfFiles() const override { return hrtfBinaural; }
    HrtfHeaderInfos const* GetHrtfHeaderInfos() const override { return hrtf ? &hrtf->GetHrtfHeaderInfos() : nullptr; }
    void updateFiltersCoefficients() override;

    /// Gain of the loops, 0 (crosstalk stays) to 1 (the ears' ratio as the set has it); slides there in 30 ms.
    void SetCrossGain(float gain) { crossGain.Start(gain, orvandsp::Ramp::DefaultRampDuration); }

    /// Clears the outputs without data or with an inactive input. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    /// The sum or the difference: its equaliser, and what goes around.
    struct Loop {
        Loop();
        void SetNumStages(unsigned int numStages);
        /// What comes around, limited.
        float Returned();

        FadedBiquadCascade equaliser;
        FadedBiquadCascade far;
        FadedBiquadCascade inverseNear;
        Delay line;
        TapOut tap;
    };

    template <typename Function>
    void ForEachLoop(Function function) {
        function(sum);
        function(difference);
    }

    std::unique_ptr<HrtfData> hrtf;
    Loop sum, difference;
    orvandsp::Ramp crossGain;
};

}  // namespace Lume
