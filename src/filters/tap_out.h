#pragma once

#include <algorithm>

#include "filters/delay.h"

namespace Lume {

/// A further read head on somebody else's delay line, with a delay ramp of its own.
///
/// Who writes the line with tapIn lets each tap read the block and then moves the line on with AdvanceWritePosition.
/// While a glide runs the tap reads in its own mode, otherwise in the line's.
class TapOut {
public:
    static constexpr float DefaultInterpolationTime = 30.0f;  ///< [ms]

    /// @param source  the line to read, which must outlive the tap
    explicit TapOut(Delay* source) : line(source) {}

    /// Reads a block that the line's owner has written. Real-time safe.
    void Process(float* out, unsigned int count) noexcept {
        line->tapOut(out, count, delayRamp, interpolationMode, state);
    }

    /// The cells of the line that Process would copy, as Delay::FindTapped has them.
    float* FindTapped(unsigned int count) noexcept { return line->FindTapped(delayRamp, static_cast<int>(count)); }

    /// Whether Process would read with a head that stands still in the mode allpass, and for a block that head.
    bool StandsStill() const noexcept { return line->StandsStill(delayRamp); }
    std::optional<orvandsp::kernels::AllpassHead> FindAllpassHead(unsigned int count) noexcept {
        return line->FindAllpassHead(delayRamp, static_cast<int>(count));
    }

    /// Sets the delay [ms]. One above the line's maximum grows the line, which silences it.
    void SetDelay(float ms, bool immediately);
    /// The delay [ms] that was set last, which may be still on its way.
    float GetDelay() const noexcept { return 1000.0f * delayRamp.target / samplerate; }

    /// The shortest delay from here to the end of a glide [samples].
    float GetShortestDelay() const noexcept { return std::min(delayRamp.current, delayRamp.target); }

    void SetInterpolationMode(Delay::InterpolationMode newMode) { interpolationMode = newMode; }
    void SetInterpolationMode(char const* name) { SetInterpolationMode(Delay::GetInterpolationMode(name)); }
    /// Sets the time of the following glides [ms].
    void SetInterpolationTime(float ms) { interpolationTime = ms; }

    /// Takes another rate [Hz]; the delay glides to where it was.
    void SetSamplerate(float newSamplerate);
    /// No effect: block sizes concern the line.
    void SetMaxBlockSize(unsigned int /*blockSize*/) {}
    /// Forgets the previous output. The line isn't touched.
    void Clear() { state = 0.0f; }

private:
    Delay* line;
    float samplerate = orvandsp::SignalProcessing::DefaultSampleRate;  // [Hz]
    Delay::InterpolationMode interpolationMode = Delay::nearest;
    float interpolationTime = DefaultInterpolationTime;  // [ms]
    orvandsp::Ramp delayRamp;                            // [samples]
    float state = 0.0f;
};

}  // namespace Lume
