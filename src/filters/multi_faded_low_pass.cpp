#include "filters/multi_faded_low_pass.h"

namespace Lume {

void MultiFadedLowPass::SetNumChannels(unsigned int numChannels) {
    const std::size_t numKept = filters.size();
    Bank::SetNumChannels(numChannels);
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

void MultiFadedLowPass::SetSamplerate(float newSamplerate) {
    Bank::SetSamplerate(newSamplerate);
    Update(0);
}

/// Hands the set of the present cutoff and damping to the channels from `first` on.
void MultiFadedLowPass::Update(std::size_t first) {
    float set[5];
    computeBiquadTapsForLowPass(set, cutoff, damping, samplerate);
    for (std::size_t i = first; i < filters.size(); ++i) filters[i].SetCoefficients(set, false);
}

}  // namespace Lume
