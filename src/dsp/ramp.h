#pragma once

#include <cstdint>

#include "dsp/signal_processing.h"

namespace orvandsp {

/// Linear slide of a control value from where it is to a target, over a time in milliseconds: what changes gains and
/// delays without a click. A small value type, freely copied.
struct Ramp {
    /// Ramp time of a new ramp [ms].
    static constexpr float DefaultRampDuration = 30.0f;

    /// Slides to a target and keeps the time for later calls of SetValue.
    /// @param timeMs  [ms]; 0 or not a number jumps at once, a negative time jumps at the next Process
    void Start(float newTarget, float timeMs);

    /// Jumps to a value, or slides to it over the stored time.
    void SetValue(float value, bool immediate);

    /// Stores the ramp time [ms]. A running ramp goes on unchanged.
    void SetTimeConstant(float timeMs) { timeConstant = timeMs; }

    /// Writes one value of the ramp per sample and moves it forward. Real-time safe.
    ///
    /// Each piece of a ramp that falls into one call runs from its first to its last sample exactly from where the ramp
    /// was to where it will be: the last sample of one block equals the first of the next. A piece of a single sample
    /// (a block of one, or one sample left) is 0 times infinity and comes out as not a number (kept: quirks.md 4);
    /// for gains there is ProcessGain.
    void Process(float* out, int numSamples) noexcept;

    /// Moves the ramp forward by a block without writing samples. Real-time safe.
    ///
    /// The end isn't snapped to the target: the value may stop a rounding error beside it.
    /// @return the value at the start of the block, the one to use for all of it
    float Advance(unsigned long numSamples) noexcept;

    /// Rescales the ramp to another sample rate [Hz]. A ramp that has ended runs again, flat, over its rescaled length.
    void SetSamplerate(float newSamplerate);

    float start = 0.0f;
    float current = 0.0f;
    float target = 0.0f;
    float increment = 0.0f;                                  // per sample
    float samplerate = SignalProcessing::DefaultSampleRate;  // [Hz]
    std::int32_t remaining = 0;                              // samples left; no ramp runs at 0 or below
    std::uint32_t total = 0;                                 // length [samples]
    float timeConstant = DefaultRampDuration;                // [ms]

private:
    void Begin(float newTarget, float timeMs);
};

/// Process for whoever multiplies by what it writes: a piece of a single sample takes the value at its start. Real-time
/// safe.
inline void ProcessGain(Ramp& ramp, float* out, int numSamples) noexcept {
    const float start = ramp.current;
    // A call holds at most one piece that is a ramp, and that comes first.
    const bool isSingle = ramp.remaining == 1 || (ramp.remaining > 0 && numSamples == 1);
    ramp.Process(out, numSamples);
    if (isSingle && numSamples > 0) out[0] = start;
}

}  // namespace orvandsp
