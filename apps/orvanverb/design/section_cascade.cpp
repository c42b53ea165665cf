#include "orvanverb/design/section_cascade.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

namespace program {

namespace {

constexpr std::size_t numStages = SectionCascade::numStages;
constexpr double decibelsPerNeper2 = 10.0 / std::numbers::ln10;  // of a power's natural logarithm

/// Of the numerators first, then of the denominators.
double LargestRadius(std::size_t place) {
    return place < numStages ? SectionCascade::largestZeroRadius : SectionCascade::largestPoleRadius;
}

double Angle(double hertz, double samplerate) {
    return 2.0 * std::numbers::pi * hertz / samplerate;
}

/// |1 + c1 z^-1 + c2 z^-2|^2 at angles given by their cosines.
double Power(SectionCascade::Quadratic const& q, double cos1, double cos2) {
    return 1.0 + q.c1 * q.c1 + q.c2 * q.c2 + 2.0 * q.c1 * (1.0 + q.c2) * cos1 + 2.0 * q.c2 * cos2;
}

double Unbounded(double value) {
    constexpr double margin = 1e-5;
    return std::atanh(std::clamp(value, -1.0 + margin, 1.0 - margin));
}

using Order = std::array<std::size_t, numStages>;

constexpr Order Identity() {
    Order order{};
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

/// The order of numbers 0 to 5 that costs least; of equal ones the first.
template <typename Cost>
Order Cheapest(Cost&& cost) {
    Order order = Identity(), best = order;
    double least = std::numeric_limits<double>::infinity();
    do {
        const double here = cost(order, least);
        if (here < least) {
            least = here;
            best = order;
        }
    } while (std::next_permutation(order.begin(), order.end()));
    return best;
}

}  // namespace

SectionCascade::SectionCascade(std::span<Quadratic const> numerators, std::span<Quadratic const> denominators) {
    std::size_t place = 1;
    for (std::span<Quadratic const> const& side : {numerators, denominators})
        for (Quadratic const& quadratic : side) {
            const double radius = LargestRadius(place / 2);
            const double u = Unbounded(quadratic.c2 / (radius * radius));
            parameters[place++] = u;
            parameters[place++] = Unbounded(quadratic.c1 / radius / (1.0 + std::tanh(u)));
        }
}

SectionCascade::Quadratic SectionCascade::At(std::size_t place) const {
    const double radius = LargestRadius(place);
    const double t2 = std::tanh(parameters[1 + 2 * place]), t1 = std::tanh(parameters[2 + 2 * place]);
    return {radius * (1.0 + t2) * t1, radius * radius * t2};
}

std::array<float, SectionCascade::numParameters> SectionCascade::Coefficients() const {
    std::array<float, numParameters> set{static_cast<float>(std::pow(10.0, parameters[0] / 20.0))};
    for (std::size_t stage = 0; stage < numStages; ++stage) {
        const Quadratic b = Numerator(stage), a = Denominator(stage);
        std::size_t place = 1 + 4 * stage;
        for (const double value : {b.c1, b.c2, a.c1, a.c2}) set[place++] = static_cast<float>(value);
    }
    return set;
}

CascadeLevels::CascadeLevels(std::span<double const> frequencies, double samplerate) {
    for (const double hertz : frequencies) {
        cos1.push_back(std::cos(Angle(hertz, samplerate)));
        cos2.push_back(std::cos(2.0 * Angle(hertz, samplerate)));
    }
}

void CascadeLevels::Compute(SectionCascade const& cascade, std::vector<double>& level,
                            std::vector<double>* derivatives) const {
    constexpr std::size_t numQuadratics = 2 * numStages;
    std::array<SectionCascade::Quadratic, numQuadratics> quadratics;
    for (std::size_t k = 0; k < numStages; ++k) {
        quadratics[k] = cascade.Numerator(k);
        quadratics[numStages + k] = cascade.Denominator(k);
    }
    level.resize(cos1.size());
    if (derivatives != nullptr) derivatives->resize(cos1.size() * SectionCascade::numParameters);
    for (std::size_t i = 0; i < cos1.size(); ++i) {
        std::array<double, numQuadratics> power;
        double upper = 1.0, lower = 1.0;
        for (std::size_t k = 0; k < numQuadratics; ++k) {
            power[k] = Power(quadratics[k], cos1[i], cos2[i]);
            (k < numStages ? upper : lower) *= power[k];
        }
        level[i] = cascade.parameters[0] + 10.0 * std::log10(upper / lower);
        if (derivatives == nullptr) continue;

        double* const row = derivatives->data() + i * SectionCascade::numParameters;
        row[0] = 1.0;
        for (std::size_t k = 0; k < numQuadratics; ++k) {
            auto const& [c1, c2] = quadratics[k];
            const double scale = (k < numStages ? decibelsPerNeper2 : -decibelsPerNeper2) / power[k];
            const double byC1 = (2.0 * c1 + 2.0 * (1.0 + c2) * cos1[i]) * scale;
            const double byC2 = (2.0 * c2 + 2.0 * c1 * cos1[i] + 2.0 * cos2[i]) * scale;
            const double radius = LargestRadius(k);
            // tanh u and tanh v, from what they made of the quadratic.
            const double t2 = c2 / (radius * radius), t1 = c1 / (radius * (1.0 + t2));
            row[1 + 2 * k] = byC1 * radius * t1 * (1.0 - t2 * t2) + byC2 * radius * radius * (1.0 - t2 * t2);
            row[2 + 2 * k] = byC1 * radius * (1.0 + t2) * (1.0 - t1 * t1);
        }
    }
}

std::complex<double> ResponseOfSections(std::span<float const> coefficients, double hertz, double samplerate) {
    const std::complex<double> delay = std::polar(1.0, -Angle(hertz, samplerate));
    std::complex<double> response = static_cast<double>(coefficients[0]);
    const auto quadratic = [&](std::size_t place) {
        return 1.0 + delay * (static_cast<double>(coefficients[place]) +
                              delay * static_cast<double>(coefficients[place + 1]));
    };
    for (std::size_t place = 1; place + 4 <= coefficients.size(); place += 4)
        response *= quadratic(place) / quadratic(place + 2);
    return response;
}

std::array<float, SectionCascade::numParameters> OrderStages(SectionCascade const& cascade, double samplerate) {
    constexpr std::size_t numPoints = 160;
    using Levels = std::array<double, numPoints>;
    std::array<Levels, numStages> upper, lower;  // powers
    for (std::size_t i = 0; i < numPoints; ++i) {
        // Dense at the bottom, where poles lie close together.
        const double place = (static_cast<double>(i) + 0.5) / numPoints;
        const double angle = Angle(0.5 * samplerate * place * place, samplerate);
        for (std::size_t k = 0; k < numStages; ++k) {
            upper[k][i] = Power(cascade.Numerator(k), std::cos(angle), std::cos(2.0 * angle));
            lower[k][i] = Power(cascade.Denominator(k), std::cos(angle), std::cos(2.0 * angle));
        }
    }

    std::array<std::array<double, numStages>, numStages> spread;  // of numerator n over denominator d, as a ratio
    for (std::size_t n = 0; n < numStages; ++n)
        for (std::size_t d = 0; d < numStages; ++d) {
            double least = std::numeric_limits<double>::infinity(), most = 0.0;
            for (std::size_t i = 0; i < numPoints; ++i) {
                least = std::min(least, upper[n][i] / lower[d][i]);
                most = std::max(most, upper[n][i] / lower[d][i]);
            }
            spread[n][d] = std::log(most / least);
        }
    const Order numeratorOf = Cheapest([&](Order const& order, double) {
        double sum = 0.0;
        for (std::size_t d = 0; d < numStages; ++d) sum += spread[order[d]][d];
        return sum;
    });
    const Order sequence = Cheapest([&](Order const& order, double least) {
        Levels signal;
        signal.fill(1.0);
        double peak = 0.0;
        for (const std::size_t d : order) {
            for (std::size_t i = 0; i < numPoints; ++i) {
                signal[i] *= upper[numeratorOf[d]][i] / lower[d][i];
                peak = std::max(peak, signal[i]);
            }
            if (peak >= least) break;
        }
        return peak;
    });

    SectionCascade ordered;
    ordered.parameters[0] = cascade.parameters[0];
    for (std::size_t k = 0; k < numStages; ++k)
        for (std::size_t each = 0; each < 2; ++each) {
            ordered.parameters[1 + 2 * k + each] = cascade.parameters[1 + 2 * numeratorOf[sequence[k]] + each];
            ordered.parameters[1 + 2 * (numStages + k) + each] =
                cascade.parameters[1 + 2 * (numStages + sequence[k]) + each];
        }
    return ordered.Coefficients();
}

}  // namespace program
