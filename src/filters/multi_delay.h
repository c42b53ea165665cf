#pragma once

#include <memory>

#include "filters/bank.h"
#include "filters/delay.h"

namespace Lume {

/// Bank of independent delay lines that read linearly at first.
class MultiDelay : public Bank<std::unique_ptr<Delay>> {
public:
    /// @param maxDelay  longest delay expected of each line [ms]
    MultiDelay(unsigned int numDelays, float maxDelay);

    /// Delays each channel. An inactive channel is silent, and its line stands still: when the channel comes back it
    /// goes on with what the line held. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    /// Process in parts, of which the middle one is somebody else's, who reads all lines together with something else:
    /// the heads to read with, if all stand still in the mode allpass; what writes the lines; what moves on.
    /// @param heads  one for each channel
    /// @return false if some head doesn't stand still: then Process is the way
    bool FindHeads(orvandsp::kernels::AllpassHead* heads, unsigned long numSamples) noexcept;
    void WriteBlock(float** inputs, unsigned long numSamples);
    void FinishBlock(unsigned long numSamples) noexcept;

    /// Where Process would copy a line's input to, as Delay::FindCells has it.
    float* FindCells(unsigned int index, unsigned long numSamples) noexcept {
        return filters[index]->FindCells(static_cast<int>(numSamples), 0);
    }

    unsigned int GetNumDelays() const noexcept { return static_cast<unsigned int>(filters.size()); }

    /// Glides one line to a delay [ms] over its interpolation time.
    void SetDelay(unsigned int index, float ms) { filters[index]->SetDelay(ms, false); }
    /// Glides all lines; GetNumDelays() values [ms].
    void SetDelays(float* ms);
    /// Writes GetNumDelays() values [ms].
    void GetDelays(float* ms) const;

    /// Makes room in all lines for delays up to `ms`, and silences them.
    void SetMaxDelay(float ms) {
        ForEach([ms](Delay& delay) { delay.SetMaxDelay(ms); });
    }
    void SetMaxDelay(unsigned int index, float ms) { filters[index]->SetMaxDelay(ms); }
    float GetMaxDelay(unsigned int index) const { return filters[index]->GetMaxDelay(); }
    /// The greatest of all lines [ms].
    float GetMaxDelay() const;

    void SetInterpolationMode(Delay::InterpolationMode newMode) {
        ForEach([newMode](Delay& delay) { delay.SetInterpolationMode(newMode); });
    }
    void SetInterpolationMode(char const* name) { SetInterpolationMode(Delay::GetInterpolationMode(name)); }
    /// Sets the time of the following glides of all lines [ms].
    void SetInterpolationTime(float ms) {
        ForEach([ms](Delay& delay) { delay.SetInterpolationTime(ms); });
    }
};

}  // namespace Lume
