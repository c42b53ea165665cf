#include "room/source_gains.h"

#include <algorithm>

namespace Lume {

namespace {

constexpr float rampSeconds = 0.02f;

}  // namespace

void SourceGains::Configure(std::size_t newNumSources, float samplerate, std::size_t newVectorSize) {
    sources.resize(newNumSources);
    vectorSize = newVectorSize;
    step = 1.0f / (rampSeconds * samplerate);
    copies.resize(newNumSources * newVectorSize);
}

void SourceGains::Apply(float const** inputs) noexcept {
    for (std::size_t i = 0; i < sources.size(); ++i) {
        auto& [gain, wanted] = sources[i];
        if (gain == 1.0f && wanted == 1.0f) continue;
        float* const copy = &copies[i * vectorSize];
        for (std::size_t n = 0; n < vectorSize; ++n) {
            gain = std::clamp(wanted, gain - step, gain + step);
            copy[n] = gain * inputs[i][n];
        }
        inputs[i] = copy;
    }
}

}  // namespace Lume
