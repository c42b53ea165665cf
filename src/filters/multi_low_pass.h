#pragma once

#include <vector>

#include "filters/low_pass.h"

namespace Lume {

/// A bank of LowPass, one per channel, with as many inputs as outputs.
class MultiLowPass : public orvandsp::SignalProcessing {
public:
    explicit MultiLowPass(unsigned int numChannels);

    /// Grows or shrinks the bank. New channels have the default cutoff, damping and sample rate until the next setter.
    void SetNumChannels(unsigned int numChannels);

    /// [Hz], all channels.
    void SetCutOffFrequency(float cutoff);
    void SetDamping(float damping);
    /// Those of the first channel.
    /// @param result  at least five long
    void GetCoefficients(std::vector<float>& result) const;
    void ClearTaps();

    /// Filters each channel. An inactive channel's output is cleared; its filter waits. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    std::vector<LowPass> filters;
};

}  // namespace Lume
