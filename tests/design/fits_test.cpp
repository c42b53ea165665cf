#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

#include "filters/biquad_cascade.h"
#include "orvanverb/design/cascade_fit.h"
#include "orvanverb/design/filter_fit.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

std::vector<float> ImpulseResponse(std::vector<float> coefficients) {
    Lume::BiquadCascade cascade(static_cast<unsigned int>(coefficients.size() / 4));
    cascade.SetCoefficients(coefficients.data());
    std::vector<float> response = MakeImpulse(4096);
    cascade.Process(response.data(), response.data(), response.size());
    return response;
}

// Red if the parametrisation, a derivative, the warping or the order of coefficients is wrong: sections that made a
// level are found again from it, and are stable and minimum-phase.
TEST(CascadeFit, FindsSectionsAgainFromTheirLevel) {
    constexpr double rate = 48000.0;
    const program::ErbAxis axis(rate);
    const program::CascadeFit fit(axis, rate);
    for (const std::uint32_t seed : {1u, 2u, 3u, 4u}) {
        const std::vector<float> noise = MakeNoise(seed, 24);
        const std::vector<double> random(noise.begin(), noise.end());
        std::vector<float> wanted{0.5f};
        for (std::size_t stage = 0; stage < 6; ++stage) {
            // A zero and a pole at one place of the ear's axis, of different sharpness.
            const double hertz = 400.0 * std::pow(2.0, 0.85 * static_cast<double>(stage) + 0.3 * random[4 * stage]);
            for (const std::size_t side : {1u, 2u}) {
                const double radius = 1.0 - hertz / rate * (1.5 + random[4 * stage + side]);
                wanted.push_back(static_cast<float>(-2.0 * radius * std::cos(6.283185307 * hertz / rate)));
                wanted.push_back(static_cast<float>(radius * radius));
            }
        }
        const std::vector<float> response = ImpulseResponse(wanted);
        std::vector<double> level;
        for (const double hertz : axis.Frequencies()) level.push_back(GainDbAt(response, hertz / rate));

        const program::CascadeFit::Result result = fit.Refine(fit.Start(level), level, 80);
        const auto made = program::OrderStages(result.cascade, rate);
        std::vector<float> coefficients(made.begin(), made.end());
        const std::vector<float> fitted = ImpulseResponse(coefficients);
        for (const double hertz : {110.0, 300.0, 900.0, 2500.0, 7000.0, 15000.0})
            EXPECT_NEAR(GainDbAt(fitted, hertz / rate), GainDbAt(response, hertz / rate), 0.3) << seed << ": " << hertz;
        Lume::BiquadCascade cascade(6);
        cascade.SetCoefficients(coefficients.data());
        EXPECT_TRUE(cascade.IsStable() && cascade.IsMinimumPhase());
    }
}

// Red if the gradient of what is minimised isn't 0: no tap can be moved either way without a loss, with the errors
// summed up frequency by frequency.
TEST(FilterFit, NoTapCanBeMovedForTheBetter) {
    constexpr std::size_t size = 64, length = 7;
    const orvandsp::RealTransform transform(size);
    program::FilterWish wish;
    for (std::uint32_t signal = 0; signal < 2; ++signal) {
        const auto noise = [&](std::uint32_t seed) {
            const std::vector<float> samples = MakeNoise(10 * signal + seed, 12);
            return std::vector<double>(samples.begin(), samples.end());
        };
        wish.ways.push_back({transform.Forward(noise(1)), transform.Forward(noise(2))});
        wish.wanted.push_back(transform.Forward(noise(3)));
        std::vector<double> weights(transform.NumBins());
        for (std::size_t k = 0; k < weights.size(); ++k) weights[k] = 1.0 + 0.1 * static_cast<double>(k * (signal + 1));
        wish.weights.push_back(weights);
    }
    wish.effort = 2.0;
    const auto cost = [&](std::vector<std::vector<double>> const& filters) {
        double sum = 0.0;
        for (std::size_t k = 0; k <= size / 2; ++k) {
            std::vector<std::complex<double>> responses;
            for (std::vector<double> const& taps : filters) {
                const std::vector<float> narrow(taps.begin(), taps.end());
                responses.push_back(ResponseAt(narrow, static_cast<double>(k) / size));
            }
            double here = wish.effort * (std::norm(responses[0]) + std::norm(responses[1]));
            for (std::size_t e = 0; e < 2; ++e)
                here += wish.weights[e][k] * std::norm(wish.ways[e][0][k] * responses[0] +
                                                       wish.ways[e][1][k] * responses[1] - wish.wanted[e][k]);
            sum += k % (size / 2) == 0 ? here : 2.0 * here;  // the bins between have a mirror image
        }
        return sum;
    };
    std::vector<std::vector<double>> filters = program::FitFilters(transform, wish, length);
    const double least = cost(filters);
    for (std::vector<double>& filter : filters)
        for (double& tap : filter)
            for (const double step : {0.001, -0.001}) {
                tap += step;
                EXPECT_GT(cost(filters), least);
                tap -= step;
            }
}

// Red if a derivative, by which the fit goes, isn't that of the level.
TEST(CascadeLevels, DerivativesAreThoseOfTheLevel) {
    const std::vector<double> frequencies = {50.0, 1000.0, 7000.0, 20000.0};
    const program::CascadeLevels levels(frequencies, 48000.0);
    program::SectionCascade cascade;
    const std::vector<float> noise = MakeNoise(3, program::SectionCascade::numParameters);
    std::copy(noise.begin(), noise.end(), cascade.parameters.begin());
    std::vector<double> level, derivatives, above, below;
    levels.Compute(cascade, level, &derivatives);
    constexpr double step = 1e-5;
    for (std::size_t p = 0; p < cascade.parameters.size(); ++p) {
        program::SectionCascade moved = cascade;
        moved.parameters[p] += step;
        levels.Compute(moved, above, nullptr);
        moved.parameters[p] -= 2.0 * step;
        levels.Compute(moved, below, nullptr);
        for (std::size_t f = 0; f < frequencies.size(); ++f)
            EXPECT_NEAR(derivatives[f * cascade.parameters.size() + p], (above[f] - below[f]) / (2.0 * step), 1e-4)
                << p << " at " << frequencies[f];
    }
}

}  // namespace
