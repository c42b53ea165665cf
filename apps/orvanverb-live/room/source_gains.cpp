#include "orvanverb-live/room/source_gains.h"

#include <algorithm>

namespace live {

namespace {

constexpr float rampSeconds = 0.02f;

}  // namespace

SourceGains::SourceGains(std::size_t newNumSources, float samplerate, std::size_t newMaxBlock)
    : numSources(newNumSources),
      maxBlock(newMaxBlock),
      step(1.0f / (rampSeconds * samplerate)),
      wanted(new std::atomic<float>[newNumSources]),
      gains(newNumSources, 1.0f),
      copies(newNumSources * newMaxBlock) {
    for (std::size_t i = 0; i < numSources; ++i) wanted[i] = 1.0f;
}

void SourceGains::Begin(std::size_t source, float gain) noexcept {
    Set(source, gain);
    gains[source] = gain;
}

void SourceGains::Apply(float const** inputs, std::size_t numSamples) noexcept {
    for (std::size_t i = 0; i < numSources; ++i) {
        const float target = wanted[i].load(std::memory_order_relaxed);
        float gain = gains[i];
        if (gain == 1.0f && target == 1.0f) continue;
        float* const copy = &copies[i * maxBlock];
        for (std::size_t n = 0; n < numSamples; ++n) {
            gain = std::clamp(target, gain - step, gain + step);
            copy[n] = gain * inputs[i][n];
        }
        gains[i] = gain;
        inputs[i] = copy;
    }
}

}  // namespace live
