#pragma once

#include <vector>

#include "dsp/audio_buffer.h"
#include "filters/delay.h"
#include "kernels/kernels.h"
#include "mix/delay_gain_pair.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Binaural panner of the early reflections: no filter, just a delay and a gain for each ear, by a rule of its own that
/// uses neither the ITD model nor the head radius. The effect grows with the distance up to a metre.
class BinauralPanningITD : public BinauralPanning {
public:
    static constexpr float DefaultInterpolationTime = 30.0f;  // [ms]
    static constexpr Delay::InterpolationMode DefaultInterpolationModeForDelayLines = Delay::allpass;

    BinauralPanningITD(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning for any number of outputs but two.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<BinauralPanningITD>(requestedOutputs == 2, requestedInputs, requestedOutputs);
    }

    void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) override;

    /// With a single input that isn't active the outputs stay as they are.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    /// Silences the delay lines. Gains that are on their way go on.
    void Clear() override;
    void SetNumInputs(unsigned int newNumInputs) override;
    /// Time of the glides of delays and gains [ms].
    void SetInterpolationTime(float milliseconds) override;
    /// How all delay lines read between samples.
    void SetInterpolationMode(Delay::InterpolationMode mode);

private:
    std::vector<DelayGainPair> voices;  // one per input
    std::vector<float> gainBuffer;
    orvandsp::AudioBuffer signalBuffers{orvandsp::kernels::maxLanes, 512};  // ears that are delayed at once
    float interpolationTime = DefaultInterpolationTime;                     // [ms]
};

}  // namespace Lume
