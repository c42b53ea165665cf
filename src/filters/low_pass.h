#pragma once

#include "filters/biquad_cascade.h"

namespace Lume {

/// Second-order low-pass with a cutoff and a damping: gain 1 at 0 Hz, a zero pair at half the sample rate, and poles
/// whose radius the damping sets. sqrt(2) is about the flattest passband, less makes a resonance at the cutoff, and 0
/// is just stable.
///
/// The taps change at once; FadedLowPass crossfades.
class LowPass : public orvandsp::Filter {
public:
    static constexpr float DefaultCutOffFrequency = 7000.0f;  // [Hz]
    static constexpr float MinDamping = 0.0f;
    static constexpr float MaxDamping = 2.0f;
    static constexpr float DefaultDamping = 1.4142135f;

    /// @param cutoff   [Hz]; beyond half the sample rate it designs as that
    /// @param damping  limited to MinDamping .. MaxDamping
    explicit LowPass(float cutoff = DefaultCutOffFrequency, float damping = DefaultDamping);

    using Filter::Process;

    /// Each redesigns at once.
    void SetCutOffFrequency(float cutoff);
    void SetDamping(float newDamping);
    void SetSamplerate(float newSamplerate) override;

    float GetCutOffFrequency() const noexcept { return cutoffFrequency; }
    float GetDamping() const noexcept { return damping; }

    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override { cascade.Clear(); }
    /// Filters one channel; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples) override {
        cascade.Process(output, input, numSamples);
    }
    /// @param five  the set of a cascade of one stage, as computeBiquadTapsForLowPass makes it; cutoff and damping stay
    ///              what they were
    void SetCoefficients(float* five) override;
    void SetState(Filter const& other) override { cascade.SetState(other); }
    /// Without effect: a low-pass has order 2.
    void SetOrder(unsigned int) override {}
    void ClearTaps() override;
    bool IsStable() const override { return cascade.IsStable(); }
    bool IsMinimumPhase() const override { return cascade.IsMinimumPhase(); }
    /// @param result  at least GetNumCoefficients() long
    void GetCoefficients(std::vector<float>& result) const override;
    unsigned int GetNumCoefficients() const override { return static_cast<unsigned int>(coefficients.size()); }

private:
    void Design();

    BiquadCascade cascade{1};
    float cutoffFrequency;  // [Hz]
    float damping;
};

/// The set of a BiquadCascade of one stage that makes a low-pass.
/// @param five        the set: gain, b1, b2, a1, a2
/// @param cutoff      [Hz]
/// @param damping     limited to LowPass::MinDamping .. MaxDamping
/// @param sampleRate  [Hz]
void computeBiquadTapsForLowPass(float* five, float cutoff, float damping, float sampleRate);

}  // namespace Lume
