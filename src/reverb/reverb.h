#pragma once

#include <memory>
#include <vector>

#include "dsp/audio_buffer.h"
#include "dsp/ramp.h"
#include "dsp/signal_processing.h"
#include "filters/air_absorption.h"
#include "filters/delay.h"
#include "filters/tap_out.h"
#include "filters/unitary_hl_shelf.h"
#include "parameters/reverb_dsp_parameters.h"
#include "reverb/delgen.h"
#include "reverb/line_losses.h"
#include "reverb/shuffle.h"

namespace Lume {

/// The late tail of the room: a feedback delay network of N channels.
///
/// Around the loop of each channel: mixing matrix, delay line, absorbent shelf, air absorption; then the input is added
/// and all channels enter the matrix again. The output is taken before the input is added, so the first sound leaves
/// after the shortest delay. After J.-M. Jot and A. Chaigne, "Digital delay networks for designing artificial
/// reverberators", 90th AES Convention, 1991.
///
/// A shelf loses 60 d / (T r) dB per pass, with d the delay of its line, T the decay time and r the relative decay of
/// the band: every band then falls by 60 dB in T r seconds, whatever the delays are.
///
/// The input enters with the gain g = sqrt(N / S - 1), S being the sum of the shares of energy 10^(-6 d / T) that
/// survive a pass, and leaves with 1 / g: the level of the first arrivals doesn't depend on the decay time. A change of
/// g by more than 10 dB empties the network and jumps; smaller ones take 30 ms.
///
/// Setters don't limit their values, except for the delays. They run update at once, in the calling thread, which
/// touches filters and gains, and by the rule above the lines: they must not overlap Process.
class Reverb : public orvandsp::SignalProcessing {
public:
    /// The smallest delay that a new object assumes, and the first of its delays [ms].
    static constexpr float DefaultMinDelay = 52.91f;
    /// What the delays of a new object add up to, about [ms].
    static constexpr float DefaultSumDelay = 800.0f;

    /// @param numChannels  N, 2 to 64
    /// @param sampleRate   [Hz], above 0
    /// @return a new object that the caller owns; null outside these ranges
    static Reverb* Create(unsigned int numChannels, float sampleRate);

    /// Takes the arguments as they are; Create tests them.
    Reverb(unsigned int numChannels, float sampleRate);

    /// Takes and gives N channels, all of them active. Outputs may be the inputs. Real-time safe.
    ///
    /// Works in chunks of at most 64 samples. A line's loop is one chunk longer than its delay; a call whose length is
    /// no multiple of 64 therefore moves the loop lengths while its last chunk runs.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    /// Silences lines, taps and absorbent filters. The air filters keep their memory; gain and delays stay.
    void Clear() override;
    /// Whether no tap is on its way to another delay.
    bool StandsStill() const noexcept;
    /// What the field can be computed together with, in one pass: the cluster that feeds it, and the mix of both that
    /// is heard, in which a shelf colours the cluster alone. Arrays with an entry for each channel.
    struct Mix {
        orvandsp::kernels::AllpassHead* clusterHeads;  // moved on
        orvandsp::kernels::Shelf const* clusterShelves;
        float clusterGain;  // in front of the shelf
        float lateGain;
    };
    /// Process on what the heads of the cluster read, and the mix. While the field stands still. Real-time safe.
    /// @param mixed  N channels
    void ProcessMixed(float** mixed, Mix const& mix, unsigned long numSamples);
    /// Silences the air filters.
    void ClearAirFilters();
    /// Whether a gain that jumps silences the air filters as well. They hold what came in at the old gain; an infinite
    /// room gives it back at the new one, 20 dB too loud and more. Default false.
    void SilenceAirOnRestart(bool silence) noexcept { silencesAirOnRestart = silence; }

    void SetDecayTime(float seconds);
    void SetRelativeDecayLow(float ratio);
    void SetRelativeDecayMedium(float ratio);
    void SetRelativeDecayHigh(float ratio);
    void SetCrossoverFrequencyLow(float hertz);
    void SetCrossoverFrequencyHigh(float hertz);
    /// Makes the absorbent filters practically flat. Air absorption goes on if it is used.
    void SetInfinite(bool newInfinite);
    /// Sets decay time, relative decays and crossovers. The gain isn't read: whoever mixes the output applies it.
    void SetParameters(ReverbDspParameters const& parameters);
    /// Takes the six defaults, which act at the next update only.
    void ResetToDefaults();

    /// Acts at the next chunk.
    void UseAirAbsorption(bool use);
    /// Whether the output is divided by the input gain. Acts at the next chunk.
    void CompensateInputPower(bool compensate);
    /// The frequency at which the air filters reach their full loss [Hz].
    void SetAirAbsorptionRolloffFrequency(float hertz);

    /// Sets N delays [ms], each limited to at least 64 samples and at most 1500 ms, at once, without a glide. One
    /// beyond a line's maximum grows the line, which silences it.
    void SetDelays(float const* ms);
    void SetDelay(unsigned int channel, float ms);
    /// Sets delays that rise from a minimum [ms] and have about a given sum [ms]; see Delgen for the distribution.
    void SetDelaysMinSum(float minimum, float sum, float distribution);
    /// Takes the memory that SetDelaysMinSum needs for minima up to one [ms] and sums up to another [ms] of the given
    /// distribution, at the present sample rate and block size: such a call then doesn't allocate.
    void Reserve(float longestMinimum, float largestSum, float distribution);
    /// The longest of the delays [ms].
    float GetLongestDelay() const noexcept;
    /// Writes N delays [ms].
    void GetDelays(float* ms) const;
    unsigned int GetNumDelays() const noexcept { return numInputs; }

private:
    /// The shortest delay [ms].
    float LowestDelay() const noexcept;
    void LowerMinimumDelay(float ms) noexcept;
    void PlaceDelay(unsigned int channel, float ms);

    /// Derives the absorbent filters, the air filters and the input gain from delays and decay.
    void update();
    /// The input gain as it is in the midst of its ramp.
    float PresentInputGain() const noexcept;
    /// Calls run(first, count, gain, compensation) for one chunk of a block after the other.
    template <typename Run>
    void ForEachChunk(unsigned long numSamples, Run run);
    /// Mixes the tap buffer back into the lines.
    void WriteLines(unsigned int chunk);
    /// Fills the tap buffer: what comes out of the lines, behind the filters.
    void ReadTaps(unsigned int chunk);
    /// The same for a channel whose head is on the move.
    void ReadTapAlone(unsigned int channel, float* tapped, unsigned int chunk);

    float decayTime;               // [s]
    float relativeDecayLow;        // factors of the decay time
    float relativeDecayMedium;     //
    float relativeDecayHigh;       //
    float crossoverFrequencyLow;   // [Hz]
    float crossoverFrequencyHigh;  // [Hz]
    bool infinite;
    bool airAbsorptionOn;
    bool silencesAirOnRestart = false;
    std::vector<std::unique_ptr<Delay>> lines;
    std::vector<std::unique_ptr<TapOut>> taps;  // tap i reads line i
    std::vector<UnitaryHLShelf> absorbentFilters;
    std::vector<AirAbsorption> airFilters;
    LineLosses losses;  // designs both
    Delgen delayGenerator;
    orvandsp::AudioBuffer tapBuffer;       // N channels by one chunk
    orvandsp::AudioBuffer feedbackBuffer;  // N channels by one chunk
    Shuffle shuffle;
    orvandsp::Ramp inputGain;
    float minimumDelay;  // the smallest since construction; bounds the chunk [ms]
    bool compensateInputPower;
};

}  // namespace Lume
