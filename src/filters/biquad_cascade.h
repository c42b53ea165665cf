#pragma once

#include <algorithm>

#include "dsp/filter.h"
#include "kernels/kernels.h"

namespace Lume {

/// Chain of second-order sections with one common gain in front:
/// H(z) = gain * product of (1 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2).
///
/// A coefficient set is the gain and then b1, b2, a1, a2 of each stage. The denominator taps are held with their sign
/// changed, so that the filter adds all products; GetCoefficients returns them as held.
class BiquadCascade : public orvandsp::Filter {
public:
    /// What the signal gets against denormals: nothing, as the processor's modes keep them away.
    static constexpr float DCOffset = 0.0f;

    /// All taps are 0 and the gain is 1: the output is the input.
    explicit BiquadCascade(unsigned int numStages = 0);

    using Filter::Process;

    /// Grows or shrinks the chain; the stages that stay keep taps and memory.
    void SetNumStages(unsigned int newNumStages);
    unsigned int GetNumStages() const noexcept { return numStages; }
    /// Half as many stages as degrees; an odd order loses its last degree.
    void SetOrder(unsigned int newOrder) override { SetNumStages(newOrder >> 1); }

    void SetSamplerate(float newSamplerate) override { samplerate = newSamplerate; }
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override { std::fill(state.begin(), state.end(), 0.0f); }
    /// Filters one channel; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples) override;
    /// @param set  GetNumCoefficients() values: the gain, then b1, b2, a1, a2 of each stage
    void SetCoefficients(float* set) override;
    /// Clears this filter, whatever the other holds: the memory of other poles would ring wrongly.
    void SetState(Filter const& /*other*/) override { Clear(); }
    /// Sets all taps to 0; the gain stays.
    void ClearTaps() override { std::fill(coefficients.begin(), coefficients.end(), 0.0f); }
    bool IsStable() const override;
    bool IsMinimumPhase() const override;
    /// The gain, then b1, b2, -a1, -a2 of each stage: the denominator has the opposite sign of what SetCoefficients
    /// takes (kept: quirks.md 7).
    /// @param result  at least GetNumCoefficients() long
    void GetCoefficients(std::vector<float>& result) const override;
    unsigned int GetNumCoefficients() const override { return 4 * numStages + 1; }

    /// Whether the inputs that each stage remembers are the outputs that the one before it remembers: always, but for
    /// the first two samples of a chain that has grown while it held sound.
    bool IsInSeries() noexcept;
    /// What a kernel needs to run the stages from `first` on, as many as one call takes.
    orvandsp::kernels::Cascade GetKernelForm(std::size_t first) noexcept {
        return {first == 0 ? gain : 1.0f, coefficients.data() + 4 * first, state.data() + 4 * first};
    }

private:
    unsigned int numStages = 0;
    float gain = 1.0f;
    bool inSeries = false;  // once it is, only another number of stages ends it
};

/// Turns the coefficient set of a cascade into that of its inverse, in place: numerators and denominators change
/// places, and the gain becomes its reciprocal.
/// @param set     as BiquadCascade::SetCoefficients takes it
/// @param length  4 * stages + 1
void InvertBiquadsCascades(float* set, unsigned int length);

}  // namespace Lume
