#pragma once

#include "dsp/ramp.h"
#include "filters/delay.h"

namespace Lume {

/// One source's way to two channels: a delay and a gain for each, which slide to new values.
struct DelayGainPair {
    static constexpr float MaxDelay = 20.0f;  // [ms]

    Delay leftDelay{MaxDelay, Delay::allpass};
    Delay rightDelay{MaxDelay, Delay::allpass};
    orvandsp::Ramp leftGain;
    orvandsp::Ramp rightGain;

    /// @param leftMs, rightMs  delays [ms]
    /// @param left, right      gains
    /// @param flag             jump instead of sliding
    void Set(float leftMs, float rightMs, float left, float right, bool flag);
    /// What a new source is told.
    void Configure(float newSamplerate, unsigned int blockSize);
    /// Time of the slides [ms].
    void SetInterpolationTime(float milliseconds);
    void SetSamplerate(float newSamplerate);
    void SetMaxBlockSize(unsigned int blockSize);
    /// Silences the delays; gains that are on their way go on.
    void Clear();
};

}  // namespace Lume
