#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "dsp/filter.h"
#include "filters/shelf_recursion.h"
#include "kernels/kernels.h"
#include "parameters/hl_shelf_parameters.h"

namespace Lume {

/// Tone control with three bands: a second-order filter whose gain is gainLow at 0 Hz, about gainMed between the two
/// crossovers and gainHigh at half the sample rate, times an overall gain behind the filter.
///
/// Two first-order low shelves in a row, (s + R t) / (s + t) each after the bilinear transform s = (1 - q) / (1 + q)
/// with q the unit delay. R is the step of the shelf, and t = tan(pi f / fs) / sqrt(R) puts the crossover f at the
/// geometric middle of the step, so that a boost and the cut of the same size mirror each other. The order stays 2 and
/// the filter is stable whatever the gains.
///
/// The taps change at once, which is audible while sound runs: FadedHLShelf crossfades. No setter touches the audio
/// memory, but a new sample rate clears it. Setters must not overlap Process of the same filter.
class HLShelf : public orvandsp::Filter {
public:
    /// A flat filter: the parameters are the defaults of LumeDefaultParameters.
    HLShelf();

    using Filter::Process;

    /// Redesigns for another rate [Hz] and clears; the rate that it has already changes nothing.
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override { std::fill(state.begin(), state.end(), 0.0f); }
    /// Filters one channel; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples) override;
    /// Takes the six parameters in the order of HLShelfParameters, as SetAll does.
    void SetCoefficients(float* six) override { SetAll(six[0], six[1], six[2], six[3], six[4], six[5]); }
    /// Takes over the audio memory of another HLShelf, but not its taps: a crossfade then starts without a transient.
    void SetState(Filter const& other) override { state = static_cast<HLShelf const&>(other).state; }
    /// Without effect: a shelf has order 2.
    void SetOrder(unsigned int) override {}
    /// Silences the filter until the next design.
    void ClearTaps() override { std::fill_n(taps, static_cast<unsigned int>(numTaps), 0.0f); }
    bool IsStable() const override { return DurbinStepDownRecursion({1.0f, taps[a1], taps[a2]}); }
    /// The test of IsStable on the numerator as it is, whose first tap that test takes to be 1: a strict verdict for a
    /// filter that boosts.
    bool IsMinimumPhase() const override { return DurbinStepDownRecursion({taps[b0], taps[b1], taps[b2]}); }
    /// The largest magnitude over all frequencies, the overall gain left out, of the filter as its taps are rounded:
    /// exact to the last digits, in closed form. Infinite if a pole isn't inside the unit circle. Real-time safe.
    double LargestMagnitude() const noexcept;
    /// What numerator and denominator add up to at 0 Hz, of the taps as they are rounded: the magnitude there is the
    /// quotient, and the noise gain at least 1 by the second one. For who wants to know in no time that it is too much.
    struct Sums {
        double numerator, denominator;
    };
    Sums AtZeroHertz() const noexcept {
        return {std::abs(static_cast<double>(taps[b0]) + static_cast<double>(taps[b1]) + static_cast<double>(taps[b2])),
                std::abs(1.0 + static_cast<double>(taps[a1]) + static_cast<double>(taps[a2]))};
    }
    /// The largest factor over all frequencies by which the recursion brings out what it rounds off: above 1e6 for
    /// poles so near to the unit circle that rounding is heard. For a stable filter. Real-time safe.
    double LargestNoiseGain() const noexcept;
    /// The overall gain as it is heard behind the recursion [linear].
    float GetOverallGain() const noexcept { return OutputGain(); }
    /// Copies the six parameters as the last SetAll, SetCoefficients or new sample rate left them: SetParameters
    /// doesn't touch them, and they aren't clamped.
    /// @param result  six floats long
    void GetCoefficients(std::vector<float>& result) const override;
    unsigned int GetNumCoefficients() const override { return static_cast<unsigned int>(coefficients.size()); }

    /// Sets the overall gain so that its square is the argument (10 log10 and not 20 log10 makes the decibels): callers
    /// hand in energies (kept: quirks.md 8).
    virtual void SetGain(float linear);
    /// Designs from the record. GetCoefficients goes on to return what SetAll or SetCoefficients set.
    virtual void SetParameters(HLShelfParameters const& parameters);
    /// Designs the filter. Crossovers in the wrong order change places; then the lower one is raised to 0 and the upper
    /// one lowered to half the sample rate.
    /// @param newGain, newGainLow, newGainMed, newGainHigh  [dB]
    /// @param newFreqLow, newFreqHigh                       crossovers [Hz]
    virtual void SetAll(float newGain, float newGainLow, float newGainMed, float newGainHigh, float newFreqLow,
                        float newFreqHigh);
    /// Takes over what the crossovers of another shelf have cost: for banks whose shelves share them. Changes nothing.
    void ExpectCrossoversOf(HLShelf const& other) noexcept {
        low.ExpectCrossoverOf(other.low);
        high.ExpectCrossoverOf(other.high);
    }
    /// Takes over the six parameters of another shelf that its GetCoefficients returns.
    virtual void SetCoefficients(HLShelf const& other);

    /// Taps and audio memory, for kernels: valid until the shelf is designed anew.
    orvandsp::kernels::Shelf GetKernelShelf() noexcept { return {taps, OutputGain(), state.data()}; }

protected:
    /// The linear gain behind the recursion. It stays outside, so that a change of it leaves no transient.
    virtual float OutputGain() const noexcept { return linearGain; }
    /// Sets the overall gain [dB] without a design.
    void StoreGain(float gaindB);

private:
    friend class MultiHLShelf;  // sets the gains of its channels without a design

    void Design();

    // The working parameters, clamped by the design.
    float gain = 0.0f;      // [dB]
    float gainLow = 0.0f;   // [dB]
    float gainMed = 0.0f;   // [dB]
    float gainHigh = 0.0f;  // [dB]
    float freqLow = 0.0f;   // [Hz]
    float freqHigh = 0.0f;  // [Hz]

    /// First-order low shelf k (1 + zero q) / (1 + pole q) with a step for gain at 0 Hz and 1 at half the sample rate.
    struct Section {
        /// Computes what the last design hasn't left: most designs share most values with the one before.
        /// @param newArgument  pi times the crossover by the sample rate
        void Design(float newStepDb, float newArgument);
        void ExpectCrossoverOf(Section const& other) noexcept;
        float pole = 0.0f, zero = 0.0f, k = 1.0f;

    private:
        float stepDb = 0.0f, ratio = 1.0f, root = 1.0f;
        float argument = std::numeric_limits<float>::quiet_NaN(), tangent = 0.0f;
        bool isDone = false;
    };
    Section low, high;
    float linearHighDb = 0.0f, linearHigh = 1.0f;
    float linearGain = 1.0f;
    enum TapIndex : unsigned int { b0, b1, b2, a1, a2, numTaps };
    float taps[numTaps] = {};
};

}  // namespace Lume
