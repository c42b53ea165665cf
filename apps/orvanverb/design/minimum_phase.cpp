#include "orvanverb/design/minimum_phase.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace program {

namespace {

double Interpolate(std::span<double const> values, std::span<double const> places, double place) {
    const auto above = static_cast<std::size_t>(std::upper_bound(places.begin(), places.end(), place) - places.begin());
    if (above == 0) return values.front();
    if (above == places.size()) return values.back();
    const double part = (place - places[above - 1]) / (places[above] - places[above - 1]);
    return values[above - 1] + part * (values[above] - values[above - 1]);
}

}  // namespace

std::vector<double> MinimumPhaseResponse(std::span<double const> level, std::span<double const> frequencies,
                                         double samplerate, double warping, std::size_t length) {
    constexpr std::size_t size = 1024;  // of half the axis
    std::vector<double> logarithm(size + 1), cosine(2 * size);
    for (std::size_t k = 0; k <= size; ++k) {
        const double warped = std::numbers::pi * static_cast<double>(k) / size;
        // The allpass with -warping undoes the one with warping.
        const double plain = warped - 2.0 * std::atan2(warping * std::sin(warped), 1.0 + warping * std::cos(warped));
        logarithm[k] =
            Interpolate(level, frequencies, plain * samplerate / (2.0 * std::numbers::pi)) * std::numbers::ln10 / 20.0;
    }
    for (std::size_t k = 0; k < 2 * size; ++k) cosine[k] = std::cos(std::numbers::pi * static_cast<double>(k) / size);

    // n h[n] = sum of k c[k] h[n - k], with c the cepstrum folded onto its causal side.
    std::vector<double> scaled(length), response(length);
    for (std::size_t n = 0; n < length; ++n) {
        double cepstrum = 0.5 * (logarithm[0] + (n % 2 == 0 ? logarithm[size] : -logarithm[size]));
        for (std::size_t k = 1; k < size; ++k) cepstrum += logarithm[k] * cosine[k * n % (2 * size)];
        cepstrum /= size;
        scaled[n] = 2.0 * cepstrum * static_cast<double>(n);
        if (n == 0) {
            response[0] = std::exp(cepstrum);
            continue;
        }
        for (std::size_t k = 1; k <= n; ++k) response[n] += scaled[k] * response[n - k];
        response[n] /= static_cast<double>(n);
    }
    return response;
}

}  // namespace program
