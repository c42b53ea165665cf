#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "decoders/transaural/transaural_decoder.h"
#include "decoders/transaural/transaural_set.h"
#include "dsp/audio_buffer.h"
#include "dsp/filter.h"

namespace Lume {

/// Frame of the transaural decoders whose filters come ready from a set, as cascades of second-order sections or as
/// impulse responses. Each point of a set holds one filter after another, in the order of the network: F1, F2, ...
///
/// `orvanverb hrtf transaural` makes such sets from a measured head; docs/decoders.md tells what they reach.
///
/// New loudspeakers and sets change the filters at once, which can be heard.
class FilteredTransauralDecoder : public TransauralDecoder {
public:
    bool LoadFromFile(char const* path) override;
    /// True for second-order sections and for impulse responses.
    bool CanProcessThisTypeOfFilter(HrtfFilterType type) const override {
        return type == hrtfBiquadCells || type == hrtfFIR;
    }
    unsigned int getExpectedNumberOfFiltersInHrtfFiles() const override {
        return static_cast<unsigned int>(filters.size());
    }
    HrtfType getExpectedHrtfTypeInHrtfFiles() const override { return expectedType; }
    HrtfHeaderInfos const* GetHrtfHeaderInfos() const override { return set ? &set->GetHrtfHeaderInfos() : nullptr; }
    void updateFiltersCoefficients() override;

    /// Replaces filters of another kind by new ones, which hold nothing of the set until it is loaded again.
    /// LoadFromFile does so itself.
    void changeFiltersType(HrtfFilterType type);
    /// Chooses how impulse responses are applied, by name or value; that can be heard. Both ways give the response of
    /// the set, sample for sample; by FFT the blocks must be a power of two long. It starts with the direct form.
    void SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation);
    void SetFIRFiltersImplementationMethod(char const* name);

    /// Clears the outputs without data or with an inactive input. Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) final;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override {
        for (auto const& filter : filters) filter->Clear();
    }

protected:
    /// @param type  what a set must be made for
    FilteredTransauralDecoder(unsigned int numInputs, unsigned int numOutputs, HrtfType type, unsigned int numFilters,
                              SpeakerPair pair);

    /// Runs the network, from two active inputs to two outputs, which may be the same arrays.
    virtual void runNetwork(float** outputs, float** inputs, unsigned long numSamples) = 0;
    /// Runs a filter, counted from 1, over one block; output may be input.
    void runFilter(unsigned int number, float* output, float* input, unsigned long numSamples);
    /// Four blocks for a network to work in; their contents are undefined.
    float** scratch(unsigned long numSamples);
    /// output = F(first) (x) + F(second) (y)
    /// @param output  neither x nor y
    void runSum(float* output, unsigned int first, float* x, unsigned int second, float* y, unsigned long numSamples);
    /// output = F(first) (x) - F(second) (y)
    /// @param output  neither x nor y
    void runDifference(float* output, unsigned int first, float* x, unsigned int second, float* y,
                       unsigned long numSamples);
    /// What the set has for a filter, counted from 1; empty without a set.
    std::vector<float> coefficientsOf(unsigned int number) const;

private:
    std::vector<float> tapsFor(orvandsp::Filter const& filter, unsigned int number) const;

    HrtfType expectedType;
    SpeakerPair speakerPair;
    std::vector<std::unique_ptr<orvandsp::Filter>> filters;
    orvandsp::Filter::FIRImplementation firImplementation = orvandsp::Filter::timedomain;
    std::optional<TransauralSet> set;
    orvandsp::AudioBuffer blocks;  // four for the network, one for the second terms of sums
};

}  // namespace Lume
