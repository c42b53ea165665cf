#include "orvanverb/design/cascade_fit.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "math/lu.h"
#include "orvanverb/design/minimum_phase.h"

namespace program {

namespace {

constexpr std::size_t numStages = SectionCascade::numStages;
constexpr std::size_t numParameters = SectionCascade::numParameters;
using Complex = std::complex<double>;
using Quadratic = SectionCascade::Quadratic;

/// Brings the audible range to the places that it has at 44100 Hz with 0.5.
double WarpingFor(double samplerate) {
    const double stretch = 3.0 * samplerate / 44100.0;  // of the lowest frequencies
    return (stretch - 1.0) / (stretch + 1.0);
}

/// Weight of the unsmoothed decibels at a frequency against the smoothed ones. Beyond 16 kHz nothing else is asked, and
/// beyond 20 kHz, where the level is our own, little: at high rates, where there is more of it, as little as still
/// keeps most poles from half the sample rate.
double FineWeight(double hertz, double samplerate) {
    constexpr double lowestHz = 40.0;
    if (hertz < lowestHz) return 0.0;
    if (hertz < 16000.0) return 0.05;
    if (hertz < 20000.0) return 0.06;
    return samplerate > 50000.0 ? 0.015 : 0.04 * 20000.0 / hertz;
}

/// The zeros of a polynomial, highest power first, all at once (Aberth, "Iteration methods for finding all zeros of a
/// polynomial simultaneously", Math. Comp. 27, 1973).
std::vector<Complex> Roots(std::vector<double> const& coefficients) {
    const std::size_t degree = coefficients.size() - 1;
    std::vector<Complex> roots;
    for (std::size_t k = 0; k < degree; ++k)
        roots.push_back(
            std::polar(0.9, 0.4 + 6.283185307179586 * static_cast<double>(k) / static_cast<double>(degree)));
    for (int step = 0; step < 200; ++step) {
        double moved = 0.0;
        for (std::size_t k = 0; k < degree; ++k) {
            Complex value = 0.0, slope = 0.0, repulsion = 0.0;
            for (const double coefficient : coefficients) {
                slope = slope * roots[k] + value;
                value = value * roots[k] + coefficient;
            }
            for (std::size_t other = 0; other < degree; ++other)
                if (other != k) repulsion += 1.0 / (roots[k] - roots[other]);
            const Complex newton = value / slope;
            const Complex change = newton / (1.0 - newton * repulsion);
            if (!std::isfinite(std::abs(change))) continue;
            roots[k] -= change;
            moved = std::max(moved, std::abs(change));
        }
        if (moved < 1e-13) break;
    }
    return roots;
}

/// A root of the warped polynomial on the plain axis, brought inside the unit circle.
Complex Unwarp(Complex root, double warping) {
    constexpr double largest = 0.98;
    root = (root + warping) / (1.0 + warping * root);
    if (std::abs(root) > 1.0) root = 1.0 / std::conj(root);
    return std::abs(root) > largest ? root * (largest / std::abs(root)) : root;
}

/// Conjugate pairs, and real roots two by two in order of size, as quadratics.
std::vector<Quadratic> Pair(std::vector<Complex> const& roots) {
    constexpr double tolerance = 1e-7;
    std::vector<Quadratic> quadratics;
    std::vector<double> real;
    for (Complex const& root : roots) {
        if (root.imag() > tolerance) quadratics.push_back({-2.0 * root.real(), std::norm(root)});
        if (std::abs(root.imag()) <= tolerance) real.push_back(root.real());
    }
    std::sort(real.begin(), real.end());
    for (std::size_t k = 0; k + 1 < real.size(); k += 2)
        quadratics.push_back({-(real[k] + real[k + 1]), real[k] * real[k + 1]});
    quadratics.resize(numStages);
    return quadratics;
}

/// A quadratic whose roots are those of another one, raised to a power: what they do at a frequency they then do at
/// that of another rate.
/// @param ratio  of the rates, old over new
Quadratic MatchedQuadratic(Quadratic const& q, double ratio) {
    if (ratio == 1.0) return q;
    const double half = -0.5 * q.c1, square = half * half - q.c2;
    if (square < 0.0) {
        const double angle = std::min(ratio * std::acos(half / std::sqrt(q.c2)), std::numbers::pi);
        const double radius = std::pow(q.c2, 0.5 * ratio);
        return {-2.0 * radius * std::cos(angle), radius * radius};
    }
    // A real root below 0 belongs to half of the old rate, where another rate may have no half of it: it goes to 0.
    const auto matched = [=](double root) { return root > 0.0 ? std::pow(root, ratio) : 0.0; };
    const double a = matched(half + std::sqrt(square)), b = matched(half - std::sqrt(square));
    return {-(a + b), a * b};
}

std::vector<Quadratic> QuadraticsOf(std::vector<double> const& polynomial, double warping) {
    std::vector<Complex> roots = Roots(polynomial);
    for (Complex& root : roots) root = Unwarp(root, warping);
    return Pair(roots);
}

/// The denominator of order 2 numStages that predicts a response best behind its first samples, in the least squares.
std::vector<double> PronyDenominator(std::vector<double> const& response) {
    constexpr std::size_t order = 2 * numStages;
    orvandsp::MatrixDouble normal(order, order, 0.0);
    std::vector<double> right(order, 0.0);
    for (std::size_t i = 0; i < order; ++i)
        for (std::size_t n = order + 1; n < response.size(); ++n) right[i] += response[n - i - 1] * response[n];
    for (unsigned int i = 0; i < order; ++i)
        for (unsigned int j = 0; j < order; ++j) {
            double sum = 0.0;
            for (std::size_t n = order + 1; n < response.size(); ++n) sum += response[n - i - 1] * response[n - j - 1];
            // A trace of white noise: a response of fewer poles leaves no singular matrix.
            normal[i][j] = i == j ? sum * (1.0 + 1e-12) + 1e-30 : sum;
        }
    std::vector<double> denominator{1.0};
    for (const double coefficient : orvandsp::LU(normal).Solve(right)) denominator.push_back(-coefficient);
    return denominator;
}

/// Mean power of 11 points around each: what the start is fitted to.
std::vector<double> Smoothed(std::vector<double> const& level) {
    constexpr std::size_t reach = 5;
    std::vector<double> result;
    for (std::size_t i = 0; i < level.size(); ++i) {
        const std::size_t begin = i < reach ? 0 : i - reach, end = std::min(i + reach + 1, level.size());
        double sum = 0.0;
        for (std::size_t k = begin; k < end; ++k) sum += std::pow(10.0, 0.1 * level[k]);
        result.push_back(Decibels(sum / static_cast<double>(end - begin)));
    }
    return result;
}

/// The normal equations of a least-squares problem, gathered row by row.
class NormalEquations {
public:
    NormalEquations() : matrix(numParameters, numParameters, 0.0), right(numParameters, 0.0) {}

    void Add(double const* derivatives, double residual, double weight) {
        for (unsigned int j = 0; j < numParameters; ++j) {
            const double weighted = derivatives[j] * weight;
            right[j] -= weighted * residual;
            double* const row = &lower[j * (j + 1) / 2];
            for (unsigned int k = 0; k <= j; ++k) row[k] += weighted * derivatives[k];
        }
    }

    /// The step to take, held short where the equations are weak.
    std::vector<double> Solve(double damping) {
        for (unsigned int j = 0; j < numParameters; ++j) {
            for (unsigned int k = 0; k <= j; ++k) matrix[j][k] = matrix[k][j] = lower[j * (j + 1) / 2 + k];
            matrix[j][j] += damping * (matrix[j][j] + 1e-3) + 1e-9;
        }
        return orvandsp::LU(matrix).Solve(right);
    }

private:
    std::array<double, numParameters*(numParameters + 1) / 2> lower{};
    orvandsp::MatrixDouble matrix;
    std::vector<double> right;
};

}  // namespace

CascadeFit::CascadeFit(ErbAxis const& newAxis, double newSamplerate)
    : axis(newAxis), samplerate(newSamplerate), levels(axis.Frequencies(), newSamplerate) {
    constexpr double centresPerErb = 2.0;
    for (std::size_t i = 0; i < axis.NumPoints(); ++i)
        fineWeights.push_back(FineWeight(axis.Frequencies()[i], samplerate) *
                              std::sqrt(centresPerErb * axis.Widths()[i]));
}

SectionCascade CascadeFit::Start(std::vector<double> const& level) const {
    constexpr std::size_t length = 400;
    const double warping = WarpingFor(samplerate);
    const std::vector<double> smoothed = Smoothed(level);
    const std::vector<double> response =
        MinimumPhaseResponse(smoothed, axis.Frequencies(), samplerate, warping, length);
    const std::vector<double> denominator = PronyDenominator(response);
    std::vector<double> numerator(denominator.size(), 0.0);
    for (std::size_t n = 0; n < numerator.size(); ++n)
        for (std::size_t k = 0; k <= n; ++k) numerator[n] += denominator[k] * response[n - k];

    return Levelled({QuadraticsOf(numerator, warping), QuadraticsOf(denominator, warping)}, smoothed);
}

SectionCascade CascadeFit::StartFrom(std::span<float const> sections, double sectionsRate,
                                     std::vector<double> const& level) const {
    std::vector<Quadratic> numerators, denominators;
    for (std::size_t place = 1; place + 4 <= sections.size(); place += 4) {
        const auto at = [&](std::size_t i) { return static_cast<double>(sections[place + i]); };
        numerators.push_back(MatchedQuadratic({at(0), at(1)}, sectionsRate / samplerate));
        denominators.push_back(MatchedQuadratic({at(2), at(3)}, sectionsRate / samplerate));
    }
    return Levelled({numerators, denominators}, level);
}

SectionCascade CascadeFit::Levelled(SectionCascade cascade, std::vector<double> const& level) const {
    std::vector<double> made;
    levels.Compute(cascade, made, nullptr);
    for (std::size_t i = 0; i < made.size(); ++i)
        cascade.parameters[0] += (level[i] - made[i]) / static_cast<double>(made.size());
    return cascade;
}

CascadeFit::Result CascadeFit::Refine(SectionCascade const& start, std::vector<double> const& level, int steps) const {
    constexpr double longestStep = 1.0, largestParameter = 6.0, enough = 1e-5;
    const std::vector<double> wanted = axis.BandLevels(level);
    const auto costOf = [&](std::vector<double> const& made) {
        const std::vector<double> bands = axis.BandLevels(made);
        double sum = 0.0;
        for (std::size_t b = 0; b < bands.size(); ++b) sum += (bands[b] - wanted[b]) * (bands[b] - wanted[b]);
        for (std::size_t i = 0; i < made.size(); ++i) {
            const double residual = (made[i] - level[i]) * fineWeights[i];
            sum += residual * residual;
        }
        return sum;
    };
    const auto gather = [&](std::vector<double> const& made, std::vector<double> const& derivatives) {
        NormalEquations equations;
        std::vector<double> power(made.size());
        std::transform(made.begin(), made.end(), power.begin(), [](double db) { return std::pow(10.0, 0.1 * db); });
        for (std::size_t i = 0; i < made.size(); ++i)
            equations.Add(&derivatives[i * numParameters], made[i] - level[i], fineWeights[i] * fineWeights[i]);
        for (std::size_t b = 0; b < wanted.size(); ++b) {
            ErbAxis::Band const& band = axis.Bands()[b];
            std::array<double, numParameters> slope{};
            double sum = 0.0;
            for (std::size_t i = 0; i < band.weights.size(); ++i) {
                const std::size_t point = band.first + i;
                const double share = band.weights[i] * power[point];
                sum += share;
                for (std::size_t p = 0; p < numParameters; ++p)
                    slope[p] += share * derivatives[point * numParameters + p];
            }
            for (double& each : slope) each /= sum;
            equations.Add(slope.data(), Decibels(sum) - wanted[b], 1.0);
        }
        return equations;
    };

    SectionCascade best = start;
    std::vector<double> made, derivatives;
    levels.Compute(best, made, &derivatives);
    double cost = costOf(made), damping = 1e-2;
    NormalEquations equations = gather(made, derivatives);
    int idle = 0;
    for (int step = 0; step < steps && idle < 8; ++step) {
        const std::vector<double> change = equations.Solve(damping);
        SectionCascade trial = best;
        for (std::size_t p = 0; p < numParameters; ++p) {
            trial.parameters[p] += std::clamp(change[p], -longestStep, longestStep);
            if (p > 0) trial.parameters[p] = std::clamp(trial.parameters[p], -largestParameter, largestParameter);
        }
        levels.Compute(trial, made, nullptr);
        const double trialCost = costOf(made);
        if (trialCost < cost) {
            idle = cost - trialCost < enough * cost ? idle + 1 : 0;
            best = trial;
            cost = trialCost;
            damping = std::max(0.4 * damping, 1e-7);
            levels.Compute(best, made, &derivatives);
            equations = gather(made, derivatives);
        } else {
            ++idle;
            damping = std::min(4.0 * damping, 1e6);
        }
    }
    return {best, std::sqrt(cost / static_cast<double>(wanted.size()))};
}

}  // namespace program
