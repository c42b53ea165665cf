#pragma once

#include <algorithm>

#include "dsp/filter.h"

namespace Lume {

/// Finite impulse response filter of one channel in direct form, and nothing else: FIRFilter without its choice. The
/// impulse response is taps[0] + taps[1], taps[2], taps[3], ... (see ConvolveDirectly).
class FIRTimeDomainFilter : public orvandsp::Filter {
public:
    /// All taps are 0.
    /// @param order  the number of taps less one
    explicit FIRTimeDomainFilter(unsigned int order = 0);

    using Filter::Process;

    void SetSamplerate(float newSamplerate) override { samplerate = newSamplerate; }
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override { std::fill(state.begin(), state.end(), 0.0f); }
    /// Filters one block; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples) override;
    /// @param taps  GetNumCoefficients() values
    void SetCoefficients(float* taps) override { std::copy_n(taps, coefficients.size(), coefficients.begin()); }
    /// Takes over the memory of another FIRTimeDomainFilter.
    void SetState(Filter const& other) override { state = static_cast<FIRTimeDomainFilter const&>(other).state; }
    /// Makes room for order + 1 taps; those that there were stay.
    void SetOrder(unsigned int newOrder) override;
    void ClearTaps() override { std::fill(coefficients.begin(), coefficients.end(), 0.0f); }
    bool IsStable() const override { return true; }
    bool IsMinimumPhase() const override { return DurbinStepDownRecursion(coefficients); }
    /// @param result  at least GetNumCoefficients() long
    void GetCoefficients(std::vector<float>& result) const override;
    unsigned int GetNumCoefficients() const override { return static_cast<unsigned int>(coefficients.size()); }
};

}  // namespace Lume
