#include "harmonics/harmonics_rotation.h"

#include <cmath>
#include <cstdlib>

namespace Lume {

namespace {

/// One degree's matrix by orders from -l to l.
class Degree {
public:
    explicit Degree(int newL) : l(newL), values(Place(l, l) + 1) {}
    double& operator()(int m, int n) { return values[Place(m, n)]; }
    double operator()(int m, int n) const { return values[Place(m, n)]; }

    std::size_t Place(int m, int n) const {
        const int place = (m + l) * (2 * l + 1) + n + l;
        return static_cast<std::size_t>(place);
    }

    int l;
    std::vector<double> values;
};

/// The building block of the recursion, P in the paper: i is an order of the first degree, a and n orders of this one.
double Step(int i, int a, int n, Degree const& first, Degree const& before) {
    const int l = before.l + 1;
    if (n == -l) return first(i, 1) * before(a, -l + 1) + first(i, -1) * before(a, l - 1);
    if (n == l) return first(i, 1) * before(a, l - 1) - first(i, -1) * before(a, -l + 1);
    return first(i, 0) * before(a, n);
}

double Element(int m, int n, Degree const& first, Degree const& before) {
    const int l = before.l + 1, k = std::abs(m);
    const double divisor = std::abs(n) == l ? 2 * l * (2 * l - 1) : (l + n) * (l - n);
    const auto step = [&](int i, int a) { return Step(i, a, n, first, before); };
    const double root2 = std::sqrt(2.0);

    double sum = 0.0;
    if (k < l) sum += std::sqrt((l + m) * (l - m) / divisor) * step(0, m);
    const double v = 0.5 * std::sqrt((m == 0 ? 2.0 : 1.0) * (l + k - 1) * (l + k) / divisor);
    if (m == 0)
        sum -= v * (step(1, 1) + step(-1, -1));
    else if (m > 0)
        sum += v * (m == 1 ? step(1, 0) * root2 : step(1, m - 1) - step(-1, -m + 1));
    else
        sum += v * (m == -1 ? step(-1, 0) * root2 : step(1, m + 1) + step(-1, -m - 1));
    if (m == 0 || l - k < 2) return sum;
    const double w = 0.5 * std::sqrt((l - k - 1) * (l - k) / divisor);
    return sum - w * (m > 0 ? step(1, m + 1) + step(-1, -m - 1) : step(1, m - 1) - step(-1, -m + 1));
}

}  // namespace

std::vector<std::vector<double>> HarmonicsRotation(unsigned int order, RotationMatrix const& rotation) {
    std::vector<std::vector<double>> degrees{{1.0}};
    if (order == 0) return degrees;
    Degree first(1);
    constexpr unsigned int axes[] = {1, 2, 0};  // the orders -1, 0 and 1 are y, z and x
    for (int m = -1; m <= 1; ++m)
        for (int n = -1; n <= 1; ++n) first(m, n) = rotation[axes[m + 1]][axes[n + 1]];
    Degree before = first;
    degrees.push_back(first.values);
    for (int l = 2; l <= static_cast<int>(order); ++l) {
        Degree degree(l);
        for (int m = -l; m <= l; ++m)
            for (int n = -l; n <= l; ++n) degree(m, n) = Element(m, n, first, before);
        degrees.push_back(degree.values);
        before = degree;
    }
    return degrees;
}

}  // namespace Lume
