#pragma once

#include "dsp/signal_processing.h"

namespace Lume {

/// Splits a channel into a low and a high band that add up to an allpass, so that weighting the bands differently makes
/// a phase-matched shelf: the low one is a two-stage low-pass, the high one an allpass of the input less the low one.
class AmbisonicShelving : public orvandsp::SignalProcessing {
public:
    static constexpr float DefaultCrossover = 700.0f;  // [Hz]

    AmbisonicShelving();

    /// [Hz], from 0 to three quarters of the sample rate; beyond, these count
    void SetCrossover(float frequency);

    /// Splits one channel. Real-time safe.
    /// @param low, high  either may be the input's array
    void Process(float const* input, float* low, float* high, unsigned long numSamples) noexcept;

    /// Output 0 is the low band, output 1 the high one.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override { allpassState = lowpassState1 = lowpassState2 = 0.0f; }

private:
    void ComputeCoefficients();

    float crossover = DefaultCrossover;  // [Hz]
    float allpass = 0.0f;                // coefficient of the allpass
    float lowpass = 0.0f;                // coefficient of both stages of the low-pass
    float allpassState = 0.0f;
    float lowpassState1 = 0.0f;
    float lowpassState2 = 0.0f;
};

}  // namespace Lume
