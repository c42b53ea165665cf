#include "filters/multi_faded_low_pass.h"

#include <algorithm>

namespace Lume {

MultiFadedLowPass::MultiFadedLowPass(unsigned int numChannels) {
    numInputs = numChannels;
    numOutputs = numChannels;
    filters.resize(numChannels);
}

void MultiFadedLowPass::SetNumChannels(unsigned int numChannels) {
    const std::size_t numKept = filters.size();
    numInputs = numChannels;
    numOutputs = numChannels;
    filters.resize(numChannels);
    for (std::size_t i = numKept; i < filters.size(); ++i) {
        filters[i].SetSamplerate(samplerate);
        filters[i].SetMaxBlockSize(buffersize);
    }
    Update(numKept);
}

void MultiFadedLowPass::SetCutOffFrequency(float newCutoff) {
    cutoff = newCutoff;
    Update(0);
}

void MultiFadedLowPass::SetDamping(float newDamping) {
    damping = newDamping;
    Update(0);
}

void MultiFadedLowPass::SetCrossFadeTime(float ms) {
    for (FadedLowPass& filter : filters) filter.SetCrossFadeTime(ms);
}

void MultiFadedLowPass::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    for (std::size_t i = 0; i < filters.size(); ++i) {
        if (activeInputs[i] != 0)
            filters[i].ProcessBlock(outputs[i], inputs[i], numSamples, false);
        else
            std::fill_n(outputs[i], numSamples, 0.0f);
    }
}

void MultiFadedLowPass::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (FadedLowPass& filter : filters) filter.SetSamplerate(newSamplerate);
    Update(0);
}

void MultiFadedLowPass::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    for (FadedLowPass& filter : filters) filter.SetMaxBlockSize(blockSize);
}

void MultiFadedLowPass::Clear() {
    for (FadedLowPass& filter : filters) filter.Clear();
}

/// Hands the set of the present cutoff and damping to the channels from `first` on.
void MultiFadedLowPass::Update(std::size_t first) {
    float set[5];
    computeBiquadTapsForLowPass(set, cutoff, damping, samplerate);
    for (std::size_t i = first; i < filters.size(); ++i) filters[i].SetCoefficients(set, false);
}

}  // namespace Lume
