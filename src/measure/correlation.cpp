#include "measure/correlation.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvanmeasure {

namespace {

constexpr std::size_t lagsAtOnce = 16;

/// Products of one signal with another that comes later, summed for several lags at once: each sum goes from the first
/// sample to the last, and they don't wait for one another.
/// @param sums  gets lagsAtOnce of them
void AddProducts(double const* early, double const* late, std::size_t numSamples, double* sums) {
    double local[lagsAtOnce] = {};
    for (std::size_t n = 0; n < numSamples; ++n)
        for (std::size_t k = 0; k < lagsAtOnce; ++k) local[k] += early[n] * late[n + k];
    std::copy_n(local, lagsAtOnce, sums);
}

/// The greatest magnitude of what two signals have in common, the second one up to so many samples later.
double GreatestProduct(std::span<double const> early, std::span<double const> late, std::size_t longestLag) {
    double greatest = 0.0;
    for (std::size_t first = 0; first <= longestLag; first += lagsAtOnce) {
        const std::size_t count = std::min(lagsAtOnce, longestLag + 1 - first);
        // As far as all of them go together, and then each to its own end.
        const std::size_t last = first + lagsAtOnce - 1, together = late.size() - std::min(last, late.size());
        double sums[lagsAtOnce];
        AddProducts(early.data(), late.data() + first, together, sums);
        for (std::size_t k = 0; k < count; ++k) {
            for (std::size_t n = together; n < late.size() - first - k; ++n) sums[k] += early[n] * late[n + first + k];
            greatest = std::max(greatest, std::abs(sums[k]));
        }
    }
    return greatest;
}

}  // namespace

Figure InterauralCorrelation(std::span<double const> left, std::span<double const> right, double sampleRate) {
    const auto energy = [](std::span<double const> x) {
        return std::inner_product(x.begin(), x.end(), x.begin(), 0.0);
    };
    const double scale = std::sqrt(energy(left) * energy(right));
    if (!(scale > 0.0)) return Figure::None(Missing::silent);
    const auto longestLag = std::min(static_cast<std::size_t>(0.001 * sampleRate), left.size() - 1);
    return Figure::Of(std::max(GreatestProduct(left, right, longestLag), GreatestProduct(right, left, longestLag)) /
                      scale);
}

double Correlation(std::span<float const> a, std::span<float const> b) {
    double ab = 0.0, aa = 0.0, bb = 0.0;
    for (std::size_t n = 0; n < a.size(); ++n) {
        const auto x = static_cast<double>(a[n]), y = static_cast<double>(b[n]);
        ab += x * y;
        aa += x * x;
        bb += y * y;
    }
    return aa > 0.0 && bb > 0.0 ? ab / std::sqrt(aa * bb) : 0.0;
}

}  // namespace orvanmeasure
