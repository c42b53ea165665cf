#pragma once

#include <vector>

#include "decoders/fixed_decoder.h"
#include "dsp/audio_buffer.h"
#include "filters/fir_filter.h"
#include "hrtf/ambisonic_ears.h"

namespace Lume {

/// Ambisonic channels to the two ears of a headphone listener: one filter for each channel and ear.
class HOABinauralDecoder : public FixedDecoder {
public:
    /// Silent until it is given ears.
    /// @param numChannels  (order + 1)^2
    explicit HOABinauralDecoder(unsigned int numChannels);

    /// Takes responses for as many channels, made for the decoder's sample rate. Allocates, and silences what sounds.
    void SetEars(AmbisonicEars const& ears);
    /// How much later a sound comes than from the panner that was measured [samples].
    float GetLatencySamples() const noexcept { return latencySamples; }

    /// Blocks are a power of two long, always the same one (FIRFilter). Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override {
        for (FIRFilter& filter : filters) filter.Clear();
    }

private:
    std::vector<FIRFilter> filters;  // of all channels for the left ear, then for the right one
    orvandsp::AudioBuffer work;      // one channel, and the two sums
    float latencySamples = 0.0f;
};

}  // namespace Lume
