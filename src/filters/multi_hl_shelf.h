#pragma once

#include <vector>

#include "filters/bank.h"
#include "filters/hl_shelf.h"

namespace Lume {

/// A bank of HLShelf. New channels are flat, and at the default rate until the next SetSamplerate.
class MultiHLShelf : public Bank<HLShelf> {
public:
    explicit MultiHLShelf(unsigned int numChannels) : Bank(numChannels) {}
    using Bank::SetNumChannels;

    /// Filters each channel. An inactive channel's output is cleared and its filter waits: it goes on from there when
    /// the channel is active again. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    /// The operations of HLShelf, on each channel.
    void SetParameters(HLShelfParameters const& parameters);
    void SetAll(float gain, float gainLow, float gainMed, float gainHigh, float freqLow, float freqHigh);
    void ResetToDefaults();
    void ClearTaps() {
        ForEach([](HLShelf& shelf) { shelf.ClearTaps(); });
    }
    /// Sets the overall gain of each channel [dB] without a new design.
    void SetGaindB(float dB) {
        ForEach([dB](HLShelf& shelf) { shelf.StoreGain(dB); });
    }
};

}  // namespace Lume
