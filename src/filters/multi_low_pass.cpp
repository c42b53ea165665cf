#include "filters/multi_low_pass.h"

#include <algorithm>

namespace Lume {

MultiLowPass::MultiLowPass(unsigned int numChannels) {
    SetNumChannels(numChannels);
}

void MultiLowPass::SetNumChannels(unsigned int numChannels) {
    numInputs = numChannels;
    numOutputs = numChannels;
    filters.resize(numChannels);
}

void MultiLowPass::SetCutOffFrequency(float cutoff) {
    for (LowPass& filter : filters) filter.SetCutOffFrequency(cutoff);
}

void MultiLowPass::SetDamping(float damping) {
    for (LowPass& filter : filters) filter.SetDamping(damping);
}

void MultiLowPass::GetCoefficients(std::vector<float>& result) const {
    if (!filters.empty()) filters.front().GetCoefficients(result);
}

void MultiLowPass::ClearTaps() {
    for (LowPass& filter : filters) filter.ClearTaps();
}

void MultiLowPass::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    for (std::size_t i = 0; i < filters.size(); ++i) {
        if (activeInputs[i] != 0)
            filters[i].Process(outputs[i], inputs[i], numSamples);
        else
            std::fill_n(outputs[i], numSamples, 0.0f);
    }
}

void MultiLowPass::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (LowPass& filter : filters) filter.SetSamplerate(newSamplerate);
}

void MultiLowPass::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    for (LowPass& filter : filters) filter.SetMaxBlockSize(blockSize);
}

void MultiLowPass::Clear() {
    for (LowPass& filter : filters) filter.Clear();
}

}  // namespace Lume
