#pragma once

#include <vector>

#include "filters/hl_shelf.h"

namespace Lume {

/// A bank of HLShelf, one per channel, with as many inputs as outputs.
class MultiHLShelf : public orvandsp::SignalProcessing {
public:
    explicit MultiHLShelf(unsigned int numChannels);

    /// Grows or shrinks the bank. New channels are flat, and at the default rate until the next SetSamplerate.
    void SetNumChannels(unsigned int numChannels);

    /// Filters each channel. An inactive channel's output is cleared and its filter waits: it goes on from there when
    /// the channel is active again. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override;

    /// The operations of HLShelf, on each channel.
    void SetParameters(HLShelfParameters const& parameters);
    void SetAll(float gain, float gainLow, float gainMed, float gainHigh, float freqLow, float freqHigh);
    void ResetToDefaults();
    void ClearTaps();
    /// Sets the overall gain of each channel [dB] without a new design.
    void SetGaindB(float dB);

private:
    std::vector<HLShelf> shelves;
};

}  // namespace Lume
