#include "measure/correlation.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvanmeasure {

Figure InterauralCorrelation(std::span<double const> left, std::span<double const> right, double sampleRate) {
    const auto energy = [](std::span<double const> x) {
        return std::inner_product(x.begin(), x.end(), x.begin(), 0.0);
    };
    const double scale = std::sqrt(energy(left) * energy(right));
    if (!(scale > 0.0)) return Figure::None(Missing::silent);
    const auto longestLag = std::min(static_cast<std::size_t>(0.001 * sampleRate), left.size() - 1);
    double greatest = 0.0;
    for (std::size_t lag = 0; lag <= longestLag; ++lag) {
        const std::size_t common = left.size() - lag;
        const auto product = [common](std::span<double const> early, std::span<double const> late) {
            return std::abs(std::inner_product(early.begin(), early.begin() + static_cast<std::ptrdiff_t>(common),
                                               late.end() - static_cast<std::ptrdiff_t>(common), 0.0));
        };
        greatest = std::max({greatest, product(left, right), product(right, left)});
    }
    return Figure::Of(greatest / scale);
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
