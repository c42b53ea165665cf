#pragma once

#include <memory>

#include "dsp/audio_buffer.h"
#include "filters/multi_delay.h"
#include "reverb/shuffle.h"

namespace Lume {

/// Later reflections, formed out of the early ones: mixes its channels and then delays each by its own delay.
///
/// Delays [ms] are counted from this block's input and change by a glide of 50 ms, read through an allpass.
class Cluster : public orvandsp::SignalProcessing {
public:
    static constexpr float DefaultDelayInterpolationTime = 50.0f;  ///< [ms]

    /// Usable at once, with delays spread evenly from 20 to 80 ms.
    Cluster(unsigned int numChannels, float newSamplerate);

    /// A new object that the caller owns, or null for fewer than 3 channels. The constructor doesn't refuse them.
    static Cluster* Create(unsigned int numChannels, float samplerate);
    static void DeleteCluster(Cluster* cluster);

    /// All channels count as active. Allocates only in a call whose length differs from the one before.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// Process in parts, as MultiDelay has them.
    bool FindHeads(orvandsp::kernels::AllpassHead* heads, unsigned long numSamples) noexcept {
        return delays->FindHeads(heads, numSamples);
    }
    void WriteBlock(float** inputs, unsigned long numSamples);
    void FinishBlock(unsigned long numSamples) noexcept { delays->FinishBlock(numSamples); }
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

    unsigned int GetNumDelays() const noexcept { return numInputs; }
    void SetDelay(unsigned int index, float ms) { delays->SetDelay(index, ms); }
    /// GetNumDelays() values [ms]. Delays above 300 ms make a line grow, which silences it.
    void SetDelays(float const* ms);
    /// Writes GetNumDelays() values [ms].
    void GetDelays(float* ms) const { delays->GetDelays(ms); }

private:
    /// Mixes a block, where it can into the lines themselves.
    /// @param mixed  where it lies
    void Mix(float** mixed, float** inputs, unsigned long numSamples);

    std::unique_ptr<MultiDelay> delays;
    Shuffle shuffle;
    orvandsp::AudioBuffer scratch;  // the mixed signal, where it has no place in a line
};

}  // namespace Lume
