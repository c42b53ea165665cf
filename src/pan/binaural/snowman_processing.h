#pragma once

#include <vector>

#include "filters/delay.h"
#include "filters/faded_iir_filter.h"

namespace Lume {

/// The way of one source to one ear in the snowman model: direct sound around the head, and, unless the torso hides the
/// source, a reflection from the torso.
class SnowmanProcessing : public orvandsp::SignalProcessing {
public:
    SnowmanProcessing();

    using Coefficients = float const*;  // numerator and denominator of order 1

    /// New paths, from the next block on. @param flag  delays jump, and filters wait
    void SetDirectPath(float delayMs, Coefficients torso, Coefficients head, bool flag);
    void SetReflectionPath(float delayMs, Coefficients reflection, bool flag);
    /// Whether the torso is between source and ear: no reflection is heard then.
    void SetShadowed(bool isShadowed) noexcept { shadowed = isShadowed; }
    /// Gain of the reflection, 0...1.
    void SetReflectionCoefficient(float coefficient) noexcept { reflectionCoefficient = coefficient; }
    void SetCrossFadeTime(float milliseconds);
    void SetInterpolationTime(float milliseconds);

    /// Processes one block; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples);
    /// The same on channel 0. When it isn't active its output is cleared.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    Delay reflectionDelay{Delay::DefaultDelayLineLength, Delay::allpass};
    Delay directDelay{Delay::DefaultDelayLineLength, Delay::allpass};
    FadedIIRFilter reflectionFilter{1};
    FadedIIRFilter torsoFilter{1};
    FadedIIRFilter headFilter{1};
    bool shadowed = false;
    float reflectionCoefficient = 0.3f;
    std::vector<float> directBuffer;
    std::vector<float> reflectionBuffer;
};

}  // namespace Lume
