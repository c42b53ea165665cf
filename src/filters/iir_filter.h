#pragma once

#include <algorithm>

#include "dsp/filter.h"

namespace Lume {

/// Recursive filter of any order in direct form:
/// y[n] = sum b[k] x[n - k] - sum a[k] y[n - k], with k from 1 in the second sum. a[0] is taken to be 1 and never
/// divided by.
///
/// A coefficient set is the numerator b and then the denominator a, order + 1 values each.
class IIRFilter : public orvandsp::Filter {
public:
    /// What the signal gets against denormals: nothing, as the processor's modes keep them away.
    static constexpr float DCOffset = 0.0f;

    /// All taps are 0, but a[0], which is 1: silence.
    explicit IIRFilter(unsigned int order = 0);

    using Filter::Process;

    void SetSamplerate(float newSamplerate) override { samplerate = newSamplerate; }
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override;
    /// Filters one channel; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples) override;
    /// @param set  2 * (order + 1) values: numerator, then denominator
    void SetCoefficients(float* set) override;
    /// Each takes order + 1 values.
    void SetNumerator(float const* taps) { std::copy_n(taps, numerator.size(), numerator.begin()); }
    void SetNumerator(std::vector<float> const& taps) { SetNumerator(taps.data()); }
    void SetDenominator(float const* taps) { std::copy_n(taps, denominator.size(), denominator.begin()); }
    void SetDenominator(std::vector<float> const& taps) { SetDenominator(taps.data()); }
    /// Clears this filter, whatever the other holds: the memory of other poles would ring wrongly.
    void SetState(Filter const& /*other*/) override { Clear(); }
    /// Makes room; the taps and the memory that stay keep their values.
    void SetOrder(unsigned int newOrder) override;
    /// Sets all taps to 0, but a[0] to 1.
    void ClearTaps() override;
    bool IsStable() const override { return DurbinStepDownRecursion(denominator); }
    bool IsMinimumPhase() const override { return DurbinStepDownRecursion(numerator); }
    /// Without effect.
    void GetCoefficients(std::vector<float>& /*result*/) const override {}
    /// The length of a set and one more: callers size their buffers by it.
    unsigned int GetNumCoefficients() const override {
        return static_cast<unsigned int>(numerator.size() + denominator.size() + 1);
    }

private:
    std::vector<float> pastOutputs;  // the newest first; the inputs stand in the base's state
    std::vector<float> denominator;
    std::vector<float> numerator;
};

}  // namespace Lume
