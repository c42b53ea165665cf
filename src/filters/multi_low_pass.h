#pragma once

#include <vector>

#include "filters/bank.h"
#include "filters/low_pass.h"

namespace Lume {

/// A bank of LowPass. New channels have the default cutoff, damping and sample rate until the next setter.
class MultiLowPass : public Bank<LowPass> {
public:
    explicit MultiLowPass(unsigned int numChannels) : Bank(numChannels) {}
    using Bank::SetNumChannels;

    /// [Hz], all channels.
    void SetCutOffFrequency(float cutoff) {
        ForEach([cutoff](LowPass& filter) { filter.SetCutOffFrequency(cutoff); });
    }
    void SetDamping(float damping) {
        ForEach([damping](LowPass& filter) { filter.SetDamping(damping); });
    }
    /// Those of the first channel.
    /// @param result  at least five long
    void GetCoefficients(std::vector<float>& result) const {
        if (!filters.empty()) filters.front().GetCoefficients(result);
    }
    void ClearTaps() {
        ForEach([](LowPass& filter) { filter.ClearTaps(); });
    }

    /// Filters each channel. An inactive channel's output is cleared; its filter waits. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override {
        ForActive(outputs, numSamples, activeInputs,
                  [&](std::size_t i) { filters[i].Process(outputs[i], inputs[i], numSamples); });
    }
};

}  // namespace Lume
