#pragma once

#include <memory>
#include <vector>

#include "filters/delay.h"
#include "filters/tap_out.h"

namespace Lume {

/// Early reflections: a delay line whose taps are not summed but kept apart, each being one output channel. No gain is
/// applied here.
///
/// With one input, delay i is tap i of the one voice. With two inputs the delays alternate between a left and a right
/// voice: even ones belong to the left input, odd ones to the right; of an odd number, the last has no tap, and its
/// output is never written.
///
/// Delays [ms] change by a glide of 50 ms, which in the mode "nearest" is a sequence of single-sample jumps. A delay
/// longer than any before grows the line, which allocates and silences it.
class Early : public orvandsp::SignalProcessing {
public:
    static constexpr float DefaultDelayInterpolationTime = 50.0f;  ///< [ms]
    static constexpr Delay::InterpolationMode DefaultInterpolationMode = Delay::nearest;

    /// One delay line and its taps.
    class Voice {
    public:
        explicit Voice(unsigned int numTaps);

        /// Drops taps from the end, or appends some with a delay of 0.
        void Resize(unsigned int numTaps);
        void SetInterpolationMode(Delay::InterpolationMode mode);
        /// Sets the time of the taps' glides [ms].
        void SetInterpolationTime(float ms);
        void SetSamplerate(float samplerate);
        void SetMaxBlockSize(unsigned int blockSize);
        void Clear();
        void Reserve(float ms) { delay->Reserve(ms); }

        /// Writes a block and reads tap i into outputs[i * stride]. An inactive voice clears these outputs, and its
        /// line's time stands still.
        void Process(float** outputs, unsigned int stride, float* input, unsigned long numSamples, bool active);
        /// The two halves of it, in either order while ReadsOnlyThePast.
        void ReadBlock(float** outputs, unsigned int stride, unsigned long numSamples);
        void WriteBlock(float* input, unsigned long numSamples);
        void FindBlock(float** outputs, unsigned int stride, unsigned long numSamples);
        bool ReadsOnlyThePast(unsigned long numSamples) const noexcept;
        void MoveOn(unsigned long numSamples) noexcept { delay->AdvanceWritePosition(static_cast<int>(numSamples)); }

        std::vector<TapOut>& GetTaps() noexcept { return taps; }
        std::vector<TapOut> const& GetTaps() const noexcept { return taps; }

    private:
        std::unique_ptr<Delay> delay;  // behind a pointer, as the taps hold its address
        std::vector<TapOut> taps;
    };

    /// Usable at once, with the default early range.
    /// @param newNumInputs  1 or 2; a block with another number has no voice and does nothing
    Early(unsigned int numDelays, unsigned int newNumInputs, float newSamplerate);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// Whether no delay is as short as a block, so that nothing of its input is in its output: Process may then be
    /// taken apart, first the outputs, later the inputs, all of them active.
    bool ReadsOnlyThePast(unsigned long numSamples) const noexcept;
    /// Where the outputs are to be read until WriteBlock.
    /// @param outputs  in: as for Process; out: those that lie in a row in a line are pointed there, not copied
    void FindBlock(float** outputs, unsigned long numSamples);
    void WriteBlock(float** inputs, unsigned long numSamples);
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

    unsigned int GetNumDelays() const noexcept { return numOutputs; }
    /// Changes the number of outputs. Delays that exist already stay, new ones lie on the line from 20 to 40 ms over
    /// the whole new count. Allocates.
    void SetNumDelays(unsigned int numDelays);

    /// Takes the memory for delays up to so many milliseconds, at the present sample rate and block size: setting them
    /// then doesn't allocate.
    void Reserve(float ms);
    void SetDelay(unsigned int index, float ms);
    /// GetNumDelays() values [ms].
    void SetDelays(float const* ms);
    /// Writes GetNumDelays() values [ms], 0 for a delay without a tap. These are the delays set last, also while a
    /// glide is on its way.
    void GetDelays(float* ms) const;
    /// From the shortest to the longest delay [ms].
    float GetLength() const;

private:
    TapOut* FindTap(unsigned int index) noexcept;
    TapOut const* FindTap(unsigned int index) const noexcept;

    Delay::InterpolationMode interpolationMode = DefaultInterpolationMode;
    std::unique_ptr<Voice> leftVoice;   // of one input, or of the first of two
    std::unique_ptr<Voice> rightVoice;  // of the second of two inputs
};

}  // namespace Lume
