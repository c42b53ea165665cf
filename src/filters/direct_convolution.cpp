#include "filters/direct_convolution.h"

#include <cstring>

namespace Lume {

namespace {

/// The sum of a[i] * b[i]: four partial sums, each over every fourth product, then pairs of them, then the rest.
float DotProduct(float const* a, float const* b, std::size_t count) noexcept {
    float sums[4] = {};
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4)
        for (std::size_t lane = 0; lane < 4; ++lane) sums[lane] += a[i + lane] * b[i + lane];
    float sum = (sums[0] + sums[1]) + (sums[2] + sums[3]);
    for (; i < count; ++i) sum += a[i] * b[i];
    return sum;
}

}  // namespace

void ConvolveDirectly(float* output, float const* input, unsigned long numSamples, std::vector<float> const& taps,
                      std::vector<float>& state) noexcept {
    const std::size_t numLater = state.size() - 1;
    for (unsigned long k = 0; k < numSamples; ++k) {
        const float x = input[k];
        std::memmove(state.data() + 1, state.data(), numLater * sizeof(float));
        state[0] = x;
        output[k] = x * taps[0] + DotProduct(state.data(), taps.data() + 1, numLater);
    }
}

}  // namespace Lume
