#pragma once

#include <vector>

#include "decoders/ambisonic/ambisonic_shelving.h"

namespace Lume {

/// A bank of AmbisonicShelving, one per channel.
class MultiAmbisonicShelving : public orvandsp::SignalProcessing {
public:
    explicit MultiAmbisonicShelving(unsigned int numChannels);

    /// [Hz], all channels.
    void SetCrossover(float frequency) {
        for (AmbisonicShelving& channel : channels) channel.SetCrossover(frequency);
    }

    /// Splits every channel. Real-time safe.
    /// @param low, high, inputs  one array per channel
    void Process(float** low, float** high, float** inputs, unsigned long numSamples) noexcept;

    /// The first half of the outputs are the low bands, the second half the high ones.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override {
        for (AmbisonicShelving& channel : channels) channel.Clear();
    }

private:
    std::vector<AmbisonicShelving> channels;
};

}  // namespace Lume
