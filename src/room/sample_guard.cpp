#include "room/sample_guard.h"

#include <algorithm>
#include <cmath>

namespace Lume {

namespace {

/// False for what is not a number, too.
bool Passes(float sample) {
    return std::fabs(sample) <= SampleGuard::maxSample;
}

}  // namespace

void SampleGuard::Configure(std::size_t newNumInputs, std::size_t newVectorSize) {
    numInputs = newNumInputs;
    vectorSize = newVectorSize;
    copies.assign(numInputs * vectorSize, 0.0f);
}

std::size_t SampleGuard::Count(float const* samples, std::size_t numSamples) noexcept {
    std::size_t count = 0;
    for (std::size_t i = 0; i < numSamples; ++i) count += Passes(samples[i]) ? 0 : 1;
    return count;
}

void SampleGuard::Check(float const** inputs) noexcept {
    for (std::size_t c = 0; c < numInputs; ++c) {
        const std::size_t bad = Count(inputs[c], vectorSize);
        if (bad == 0) continue;
        numReplaced += bad;
        float* const copy = &copies[c * vectorSize];
        for (std::size_t i = 0; i < vectorSize; ++i) copy[i] = Passes(inputs[c][i]) ? inputs[c][i] : 0.0f;
        inputs[c] = copy;
    }
}

void OutputGuard::Configure(float samplerate) noexcept {
    constexpr float fadeSeconds = 0.1f;
    step = 1.0f / (fadeSeconds * samplerate);
    gain = 1.0f;
}

bool OutputGuard::Check(float* const* outputs, std::size_t numOutputs, std::size_t numSamples) noexcept {
    std::size_t bad = 0;
    for (std::size_t c = 0; c < numOutputs; ++c) bad += SampleGuard::Count(outputs[c], numSamples);
    numBad += bad;
    if (bad > 0) {
        for (std::size_t c = 0; c < numOutputs; ++c) std::fill_n(outputs[c], numSamples, 0.0f);
        gain = 0.0f;
    } else if (gain < 1.0f) {
        for (std::size_t c = 0; c < numOutputs; ++c)
            for (std::size_t i = 0; i < numSamples; ++i)
                outputs[c][i] *= std::min(gain + static_cast<float>(i) * step, 1.0f);
        gain += static_cast<float>(numSamples) * step;
    }
    return bad > 0;
}

}  // namespace Lume
