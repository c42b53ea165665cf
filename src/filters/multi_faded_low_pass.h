#pragma once

#include <vector>

#include "filters/bank.h"
#include "filters/faded_low_pass.h"

namespace Lume {

/// A bank of FadedLowPass with one cutoff and damping. Every change is taken up by a crossfade at each channel's next
/// active block.
class MultiFadedLowPass : public Bank<FadedLowPass> {
public:
    explicit MultiFadedLowPass(unsigned int numChannels) : Bank(numChannels) {}

    /// Grows or shrinks the bank; new channels fade to its cutoff and damping.
    void SetNumChannels(unsigned int numChannels);

    /// [Hz]
    void SetCutOffFrequency(float newCutoff);
    void SetDamping(float newDamping);
    /// [ms], for all channels, from their next fade on.
    void SetCrossFadeTime(float ms) {
        ForEach([ms](FadedLowPass& filter) { filter.SetCrossFadeTime(ms); });
    }

    /// Filters each channel. An inactive channel's output is cleared; its filters and its fade wait. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override {
        ForActive(outputs, numSamples, activeInputs,
                  [&](std::size_t i) { filters[i].ProcessBlock(outputs[i], inputs[i], numSamples, false); });
    }
    void SetSamplerate(float newSamplerate) override;

private:
    void Update(std::size_t first);

    float cutoff = LowPass::DefaultCutOffFrequency;  // [Hz]
    float damping = LowPass::DefaultDamping;
};

}  // namespace Lume
