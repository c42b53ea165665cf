#pragma once

#include <memory>
#include <vector>

#include "dsp/audio_buffer.h"
#include "hrtf/hrtf.h"
#include "hrtf/hrtf_filtering.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/binaural/ear_pairs.h"
#include "pan/null_panning.h"

namespace Lume {

/// Binaural panner with measured head-related filters: for each source and ear the delay and the filter of the nearest
/// measured direction. A moving source steps from direction to direction, and a crossfade hides the steps.
///
/// It starts with the built-in set. With that, a source that moves leaves a residue of -38 dB beside a 1 kHz tone; for
/// much movement SetFilterCrossFadeTime(15) brings it down to -48 dB.
class BinauralPanningDirect : public BinauralPanning {
public:
    BinauralPanningDirect(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning for any number of outputs but two.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<BinauralPanningDirect>(requestedOutputs == 2, requestedInputs, requestedOutputs);
    }

    /// Takes a set of binaural filters in biquad or FIR form ("kemar" or an empty name: the built-in one). Reconfigures
    /// filters that may be running, which can be heard.
    /// @return whether the set suits; if not, the old one stays
    /// @throws orvandsp::OrvanDspException for a file that can't be read; the old set stays then, too
    bool LoadFromFile(char const* path) override { return SetHrtf(std::make_unique<Hrtf>(path)); }
    /// The same with a set that is loaded.
    bool SetHrtf(std::unique_ptr<Hrtf> newHrtf);
    HrtfHeaderInfos const* GetHrtfHeaderInfos() const override { return &hrtf->GetHrtfHeaderInfos(); }

    void SetFilterCrossFadeTime(float milliseconds) override;
    using BinauralPanning::SetFIRFiltersImplementationMethod;
    void SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation) override;
    void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) override;
    /// Gives every source the delays and filters of its position again.
    void updateFiltersCoefficients() { forceUpdate(false); }
    /// Changes how every ear is filtered.
    void setHrtfFilterType(HRTFFilterType type);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override {
        voices.ForEach([](HrtfFiltering& ear) { ear.Clear(); });
    }
    void SetNumInputs(unsigned int newNumInputs) override;
    /// Glide time of the delays [ms].
    void SetInterpolationTime(float milliseconds) override;

private:
    std::unique_ptr<Hrtf> hrtf;         // never null
    unsigned int numCoefficients = 25;  // per ear
    HRTFFilterType filterType = biquadFilters;
    EarPairs<HrtfFiltering> voices;
    orvandsp::AudioBuffer leftEars;  // what each source gives them
    orvandsp::AudioBuffer rightEars;
};

}  // namespace Lume
