#include "reverb/early_gains.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

#include "parameters/lume_default_parameters.h"

namespace Lume {

namespace {

constexpr int randomPhase[] = {-1, 1,  1,  -1, -1, -1, 1,  1,  -1, -1, 1,  1,  1, -1, -1, 1,   //
                               -1, -1, -1, 1,  1,  1,  -1, -1, -1, -1, -1, 1,  1, 1,  1,  1,   //
                               1,  1,  1,  -1, -1, -1, -1, -1, 1,  1,  -1, -1, 1, -1, -1, -1,  //
                               -1, 1,  1,  -1, 1,  1,  -1, 1,  -1, -1, -1, 1,  1, 1,  1,  1};
static_assert(std::size(randomPhase) == 64);

/// From more taps than this on, gains are spread and thinned.
constexpr unsigned int maxPlainTaps = 8;

/// An envelope over the taps: a power of a line that falls to, or rises from, the weight of one tap in all.
struct Envelope {
    bool rises;
    float exponent;
};

Envelope EnvelopeOf(float shape) {
    if (shape <= 0.25f) {
        const float x = std::max(4.0f * shape, 1e-06f);
        return {false, x >= 1.0f ? 1.0f : 1.0f / x};
    }
    if (shape <= 0.5f) return {false, 1.0f - 4.0f * (shape - 0.25f)};
    if (shape <= 0.75f) return {true, 4.0f * (shape - 0.5f)};
    const float y = 4.0f * (shape - 0.75f);
    return {true, y >= 0.9999989867f ? 986895.0625f : 1.0f / (1.0f - y)};
}

/// How much taps between the strong ones keep: little for a short set, which would sound dense and metallic.
float ThinningFactor(float length) {
    if (length <= 20.0f) return 0.1f;
    if (length >= 60.0f) return 1.0f;
    return std::clamp(0.1f + 0.0225f * (length - 20.0f), 0.1f, 1.0f);
}

void Spread(std::vector<float>& gains, orvandsp::RepeatableRandom* random) {
    for (float& gain : gains) {
        // 0.95 to 1.05
        const double factor =
            (random != nullptr ? random->Next() : std::rand()) * 4.6566112077428556e-11 + 0.949999988079071;
        gain *= static_cast<float>(factor);
    }
}

void Thin(std::vector<float>& gains, float factor, bool normalize) {
    const auto numTaps = static_cast<unsigned int>(gains.size());
    const unsigned int period = numTaps / 4;  // at least 2, as there are more than 8 taps
    // Adds the factor and not its square: that is how the level is designed.
    float total = 1.0f;
    for (unsigned int k = 1; k < numTaps; ++k) {
        const unsigned int place = k % period;
        if (place == 0 || place == period - 1) {
            total += 1.0f;
        } else {
            gains[k] *= factor;
            total += factor;
        }
    }
    if (!normalize) return;
    const float makeup = std::sqrt(static_cast<float>(numTaps)) / std::sqrt(total);
    for (float& gain : gains) gain *= makeup;
}

}  // namespace

void GetRecommendedEarlyGains(std::vector<float>& gains, unsigned int numDelays, float shape, float length,
                              bool normalize, orvandsp::RepeatableRandom* random) {
    const unsigned int numTaps = std::min(numDelays, static_cast<unsigned int>(std::size(randomPhase)));
    const Envelope envelope =
        EnvelopeOf(std::clamp(shape, LumeDefaultParameters::MinEarlyShape, LumeDefaultParameters::MaxEarlyShape));
    const auto n = static_cast<float>(numTaps);

    gains.resize(numDelays, 1.0f);
    float sum = 0.0f;
    for (unsigned int k = 0; k < numTaps; ++k) {
        const float line = static_cast<float>(envelope.rises ? k + 1 : numTaps - k) / n;
        gains[k] = std::pow(line, envelope.exponent);
        sum += gains[k];
    }
    const float scale = n / sum;
    for (unsigned int k = 0; k < numTaps; ++k) gains[k] = static_cast<float>(randomPhase[k]) * (gains[k] * scale);

    if (numDelays <= maxPlainTaps) return;
    Spread(gains, random);
    Thin(gains, ThinningFactor(length), normalize);
}

}  // namespace Lume
