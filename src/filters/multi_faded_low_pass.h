#pragma once

#include <vector>

#include "filters/faded_low_pass.h"

namespace Lume {

/// A bank of FadedLowPass with one cutoff and damping, one filter per channel, with as many inputs as outputs. Every
/// change is taken up by a crossfade at each channel's next active block.
class MultiFadedLowPass : public orvandsp::SignalProcessing {
public:
    explicit MultiFadedLowPass(unsigned int numChannels);

    /// Grows or shrinks the bank; new channels fade to its cutoff and damping.
    void SetNumChannels(unsigned int numChannels);

    /// [Hz]
    void SetCutOffFrequency(float newCutoff);
    void SetDamping(float newDamping);
    /// [ms], for all channels, from their next fade on.
    void SetCrossFadeTime(float ms);

    /// Filters each channel. An inactive channel's output is cleared; its filters and its fade wait. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    void Update(std::size_t first);

    float cutoff = LowPass::DefaultCutOffFrequency;  // [Hz]
    float damping = LowPass::DefaultDamping;
    std::vector<FadedLowPass> filters;
};

}  // namespace Lume
