#pragma once

#include <optional>
#include <vector>

#include "dsp/ramp.h"
#include "dsp/signal_processing.h"
#include "kernels/kernels.h"

namespace Lume {

/// Delay line for one channel: a ring whose length is a power of two, with one read head built in. Further heads are
/// TapOut objects.
///
/// Delays are milliseconds at the interface and fractional samples inside. A new delay is reached by a glide of the
/// read head over the interpolation time, unless the caller asks for a jump. A delay of 0 returns the input of the same
/// block, sample for sample.
///
/// Control operations and Process belong to one thread at a time. Those that change the maximum delay allocate and
/// silence the line. Silencing takes no time: what the ring held is emptied when a head comes to read it, or written
/// over.
class Delay : public orvandsp::SignalProcessing {
public:
    /// How a read head reads between samples. The numbers are fixed: other blocks hold them. Any other number reads
    /// whole samples, and so does 4.
    enum InterpolationMode : int {
        nearest = 0,       ///< the rounded position
        linear = 1,        ///< two neighbours
        lagrange3 = 2,     ///< four neighbours, as the following ones with a 3
        allpass = 3,       ///< two neighbours and the head's previous output
        nearestXfade = 5,  ///< as nearest; while a glide runs it crossfades two samples instead of moving
        hermite3 = 6,
        watte3 = 7,
        bspline3 = 8,   ///< smooths, also at whole positions
        parabolic = 9,  ///< four neighbours; smooths
    };

    static constexpr float DefaultInterpolationTime = 30.0f;  ///< [ms]
    static constexpr float DefaultDelayLineLength = 300.0f;   ///< [ms]
    static constexpr InterpolationMode DefaultInterpolationMode = linear;

    /// @param maxDelay  longest delay expected [ms]
    explicit Delay(float maxDelay = DefaultDelayLineLength, InterpolationMode mode = DefaultInterpolationMode);

    /// Delays channel 0. Does nothing, also to the output, if activeInputs[0] is zero.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    /// Writes a block, reads the built-in head and moves on. Real-time safe.
    /// @param out, in  may be the same array
    /// @param count    at most the block size last configured
    void Process(float* out, float* in, int count) noexcept;

    /// Clears the line, and the delay glides to where it was. Like every change of rate or block size it raises the
    /// maximum delay by a further 5 ms; the ring's length, and with it the rounding of the read position, follows.
    void SetSamplerate(float newSamplerate) override;

    /// Clears the line and raises the maximum delay by 5 ms, also for an unchanged size.
    void SetMaxBlockSize(unsigned int blockSize) override;

    /// Silences the line. Delay, glide and write position stay.
    void Clear() override;

    /// Writes a block into the ring, `offset` samples ahead of the write position, without moving the latter. Nothing
    /// is copied of a block that was computed where FindCells says. Real-time safe.
    void tapIn(float* src, int count, int offset) noexcept;

    /// The cells that tapIn would copy a block to, if they lie in a row; otherwise null. Real-time safe.
    float* FindCells(int count, int offset) noexcept {
        const int begin = (writePosition + offset) & mask;
        return begin + count <= size ? Ring() + begin : nullptr;
    }

    /// Reads a block at a fixed delay. Real-time safe.
    /// @param delaySamples  [samples], counted back from the write position
    /// @param state         previous output of this head, used by the mode allpass
    void tapOut(float* out, int count, float delaySamples, InterpolationMode mode, float& state) noexcept;

    /// Reads a block along a ramp of the delay and moves the ramp forward. Once the ramp has ended, the line reads in
    /// its own mode and with its own state, whatever the arguments are: a head with another mode uses it during its
    /// glides only (kept: quirks.md 3). Real-time safe.
    void tapOut(float* out, unsigned int count, orvandsp::Ramp& ramp, InterpolationMode mode, float& state) noexcept;

    /// The cells that tapOut along this ramp would copy, if they lie in a row and the head neither moves nor
    /// interpolates; otherwise null. They hold until the line is written or changes. Real-time safe.
    float* FindTapped(orvandsp::Ramp const& ramp, int count) noexcept;

    /// Reads a block with a delay for each sample. A delay beyond the ring wraps around. Real-time safe.
    /// @param delaySamples  [samples], `count` values
    void tapOut(float* out, float* delaySamples, int count, InterpolationMode mode, float& state) noexcept;

    /// Whether tapOut along this ramp would read with a head that stands still in the mode allpass.
    bool StandsStill(orvandsp::Ramp const& ramp) const noexcept {
        return ramp.remaining <= 0 && interpolationMode == allpass;
    }
    /// That head, for kernels, if there is one: for `count` samples, until the line changes or moves on. Real-time
    /// safe.
    std::optional<orvandsp::kernels::AllpassHead> FindAllpassHead(orvandsp::Ramp const& ramp, int count) noexcept {
        if (!StandsStill(ramp)) return std::nullopt;
        ExpectRead(ramp.current, ramp.current, count);
        return orvandsp::kernels::AllpassHead{Ring(), size, PositionOf(ramp.current), &allpassState, 0};
    }
    /// The built-in head, if it stands still in the mode allpass.
    std::optional<orvandsp::kernels::AllpassHead> FindBuiltInHead(int count) noexcept {
        return FindAllpassHead(delayRamp, count);
    }
    bool IsAllpass() const noexcept { return interpolationMode == allpass; }
    /// The built-in head for kernels in which heads of the mode allpass may be on the move. Written where it stays.
    void GetGlidingHead(orvandsp::kernels::GlidingHead& head, int count) noexcept {
        ExpectRead(delayRamp, count);
        head.ring = Ring();
        head.mask = mask;
        head.base = static_cast<float>(writePosition);
        head.delay = &delayRamp.current;
        head.remaining = &delayRamp.remaining;
        head.increment = delayRamp.increment;
        head.state = &allpassState;
    }
    /// Reads a block with the built-in head, without writing or moving on. Real-time safe.
    void ReadBuiltIn(float* out, int count) noexcept {
        tapOut(out, static_cast<unsigned int>(count), delayRamp, interpolationMode, allpassState);
    }

    /// Moves the write position past a block written by tapIn, once every head has read it. Real-time safe.
    void AdvanceWritePosition(int count) noexcept { writePosition = (writePosition + count) & mask; }

    /// Has the cells fetched that a block of as many samples will be written to, `offset` samples ahead of the write
    /// position: the processor saw them last a whole ring ago. Real-time safe.
    void ExpectBlock(int count, int offset) noexcept {
        constexpr int cellsPerLine = 16;
        if (float* const cells = FindCells(count, offset))
            for (int k = 0; k < count; k += cellsPerLine) __builtin_prefetch(cells + k, 1);
    }

    /// Sets the delay [ms]. One above the maximum first grows the line, which silences it. Nothing else is limited.
    void SetDelay(float ms, bool immediately);
    /// Sets the delay [samples].
    void SetDelayInSamples(float samples, bool immediately);
    /// The delay [ms] that was set last, which may be still on its way.
    float GetDelay() const noexcept { return 1000.0f * delayRamp.target / samplerate; }

    /// Makes room for delays up to `ms`, plus a margin of 5 ms, and silences the line.
    void SetMaxDelay(float ms);
    /// Takes the memory that SetMaxDelay of as much would need, for the present sample rate and block size, and changes
    /// nothing else: delays up to there then don't allocate.
    void Reserve(float ms);
    /// The maximum delay [ms], margin included.
    float GetMaxDelay() const noexcept { return maxDelay; }
    /// Length of the ring [samples].
    int GetSize() const noexcept { return size; }

    void SetInterpolationMode(InterpolationMode newMode) { interpolationMode = newMode; }
    /// Sets the mode of that name; allpass for an unknown name.
    void SetInterpolationMode(char const* name) { SetInterpolationMode(GetInterpolationMode(name)); }
    /// Sets the time of the following glides [ms].
    void SetInterpolationTime(float ms) { interpolationTime = ms; }

    /// The mode of that name; allpass for an unknown name.
    static InterpolationMode GetInterpolationMode(char const* name);
    /// The name of a mode; "allpass" for a number without a name.
    static char const* GetInterpolationModeName(InterpolationMode mode);

private:
    /// Where a fixed delay is read.
    float PositionOf(float delaySamples) const noexcept {
        return static_cast<float>(writePosition) + static_cast<float>(size) - delaySamples;
    }

    /// Cells on either side of the ring that repeat its other end, so that readers need no test for the wrap.
    static constexpr int numGuards = 4;

    /// The length of the ring for a maximum delay [ms].
    int SizeFor(float newMaxDelay) const;
    void Allocate(int newSize);

    float* Ring() noexcept { return buffer.data() + numGuards; }
    /// Renews the guard cells that repeat what was written at either end of the ring.
    void RefreshGuards() noexcept;
    /// Renews them if they repeat one of these cells.
    void RefreshGuards(int begin, int count) noexcept {
        if (begin < numGuards || begin + count >= size) RefreshGuards();
    }

    /// Makes sure that a head whose delays lie between two [samples] doesn't read for `count` samples what Clear left.
    void ExpectRead(float shortest, float longest, int count) noexcept {
        if (numStale > 0) EmptyStaleBetween(shortest, longest, count);
    }
    void ExpectRead(orvandsp::Ramp const& ramp, int count) noexcept;
    void EmptyStaleBetween(float shortest, float longest, int count) noexcept;
    /// Empties those of `count` cells that are stale.
    /// @param begin  index in the ring
    void EmptyStale(int begin, int count) noexcept;
    /// Takes account of cells that are written.
    void WriteOverStale(int begin, int count) noexcept;
    void FillWithZeros(int begin, int count) noexcept;
    /// The read head of a ramp in the mode nearestXfade.
    void CrossfadeRamp(float* out, unsigned int count, orvandsp::Ramp& ramp) noexcept;

    InterpolationMode interpolationMode;
    float interpolationTime = DefaultInterpolationTime;  // [ms]
    float allpassState = 0.0f;
    orvandsp::Ramp delayRamp;   // [samples]
    std::vector<float> buffer;  // guards, ring, guards; never shrinks
    int size = 0;
    int mask = 0;
    int allocatedSize = 0;
    float maxDelay = 0.0f;  // [ms], margin included
    int writePosition = 0;
    // Cells that count as zero, although they still hold what was there when the line was cleared.
    int firstStale = 0;
    int numStale = 0;
};

}  // namespace Lume
