#include "orvanverb/design/transaural_design.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <tuple>
#include <utility>

#include "orvanverb/design/filter_fit.h"

namespace program {

namespace {

using Complex = std::complex<double>;

constexpr double cancelledToHz = 10000.0;
constexpr double measuredFromHz = 120.0, measuredToHz = 16000.0;

/// The mean of two responses that differ little: their mean phase with their mean power, so that the highs don't cancel
/// where one comes later.
orvandsp::Spectrum MeanOf(orvandsp::Spectrum const& a, orvandsp::Spectrum const& b) {
    orvandsp::Spectrum mean(a.size());
    for (std::size_t k = 0; k < a.size(); ++k) {
        const Complex sum = a[k] + b[k];
        const double level = std::sqrt(0.5 * (std::norm(a[k]) + std::norm(b[k])));
        mean[k] = std::abs(sum) > 0.0 ? sum * (level / std::abs(sum)) : a[k];
    }
    return mean;
}

/// The sample at which a response is largest: about where the sound arrives.
double PeakOf(std::vector<double> const& response) {
    const auto peak = std::max_element(response.begin(), response.end(),
                                       [](double a, double b) { return std::abs(a) < std::abs(b); });
    return static_cast<double>(peak - response.begin());
}

/// A level with its details smoothed out: the power mean over an octave.
std::vector<double> OctaveMean(std::vector<double> const& level) {
    std::vector<double> sums{0.0}, mean;
    for (const double value : level) sums.push_back(sums.back() + value * value);
    for (std::size_t k = 0; k < level.size(); ++k) {
        const auto centre = static_cast<double>(k);
        const auto first = static_cast<std::size_t>(centre / std::numbers::sqrt2);
        const std::size_t end = std::min(level.size(), static_cast<std::size_t>(centre * std::numbers::sqrt2) + 1);
        mean.push_back(std::sqrt((sums[end] - sums[first]) / static_cast<double>(end - first)));
    }
    return mean;
}

}  // namespace

bool IsSymmetricNetwork(Lume::HrtfType network) {
    return network == Lume::hrtfBinauralToTransauralShufflerSymmetric ||
           network == Lume::hrtfBinauralToTransauralRecursiveSymmetric ||
           network == Lume::hrtfBinauralToTransauralFeedForwardSymmetric;
}

bool HasBlockLateLoop(Lume::HrtfType network) {
    return network == Lume::hrtfBinauralToTransauralRecursiveSymmetric ||
           network == Lume::hrtfBinauralToTransauralRecursiveAsymmetric;
}

/// The ways as they are to be inverted, with the near ears at a mean level of 1.
struct TransauralDesign::Plant {
    orvandsp::Spectrum ll, lr, rl, rr;
    double level = 1.0;         // that was taken out
    std::vector<double> near;   // the near ears' level, at least -24 dB
    orvandsp::Spectrum target;  // what an ear is to hear of its signal, and
    double delay = 0.0;         // how late, in samples
};

TransauralDesign::TransauralDesign(Lume::HrtfType newNetwork, TransauralLimits const& newLimits, std::size_t wayLength)
    : network(newNetwork),
      limits(newLimits),
      maxGain(std::pow(10.0, limits.maxGainDb / 20.0)),
      effort(0.3 / (4.0 * maxGain * maxGain)),
      transform(std::bit_ceil(4 * std::max(limits.length, wayLength))) {
    for (std::size_t k = 0; k < transform.NumBins(); ++k)
        importance.push_back(Frequency(k) <= cancelledToHz ? 1.0 : Frequency(k) <= measuredToHz ? 0.3 : 0.1);
}

TransauralDesign::Plant TransauralDesign::Prepare(Ways const& ways) const {
    constexpr double leastNear = 0.063, leastTarget = 1e-3;
    Plant plant;
    plant.delay = std::min(PeakOf(ways.ll), PeakOf(ways.rr)) + 0.25 * static_cast<double>(limits.length);
    plant.ll = transform.Forward(ways.ll);
    plant.lr = transform.Forward(ways.lr);
    plant.rl = transform.Forward(ways.rl);
    plant.rr = transform.Forward(ways.rr);
    if (IsSymmetricNetwork(network)) {
        plant.ll = plant.rr = MeanOf(plant.ll, plant.rr);
        plant.lr = plant.rl = MeanOf(plant.lr, plant.rl);
    }

    double power = 0.0;
    std::size_t count = 0;
    for (std::size_t k = 0; k < transform.NumBins(); ++k)
        if (Frequency(k) >= 200.0 && Frequency(k) <= 8000.0) {
            power += 0.5 * (std::norm(plant.ll[k]) + std::norm(plant.rr[k]));
            ++count;
        }
    plant.level = std::sqrt(power / static_cast<double>(std::max<std::size_t>(count, 1)));

    // The ways to the far ears behind 1 - leak / (1 + j f / corner): with the delay between the ears the difference of
    // the ways then begins at `leak`, and leaves it where the delay alone would reach it. The two together peak 3 dB
    // above 1 / leak.
    constexpr double typicalItdSeconds = 3e-4;
    const double leak = std::min(1.0, std::numbers::sqrt2 / maxGain);
    const double cornerHz = leak / (2.0 * std::numbers::pi * typicalItdSeconds);
    for (std::size_t k = 0; k < transform.NumBins(); ++k) {
        const Complex kept = 1.0 - leak / Complex(1.0, Frequency(k) / cornerHz);
        for (orvandsp::Spectrum* const near : {&plant.ll, &plant.rr}) (*near)[k] /= plant.level;
        for (orvandsp::Spectrum* const far : {&plant.lr, &plant.rl}) (*far)[k] *= kept / plant.level;
        plant.near.push_back(std::sqrt(0.5 * (std::norm(plant.ll[k]) + std::norm(plant.rr[k]))));
    }

    const auto binOf = [&](double hertz) {
        const auto bin = std::lround(hertz / limits.samplerate * static_cast<double>(transform.Size()));
        return std::min(static_cast<std::size_t>(bin), transform.NumBins() - 1);
    };
    const double nyquistHz = 0.5 * limits.samplerate;
    const std::size_t first = binOf(measuredFromHz), last = binOf(std::min(measuredToHz, 0.9 * nyquistHz));
    std::vector<double> target(transform.NumBins(), 1.0);
    for (std::size_t k = 0; k < target.size(); ++k)
        if (k < first || k > last)
            target[k] = std::max(plant.near[k] / std::max(plant.near[std::clamp(k, first, last)], 1e-6), leastTarget);
    plant.target = transform.MinimumPhase(target);
    for (double& value : plant.near) value = std::max(value, leastNear);
    return plant;
}

TransauralDesign::Filter TransauralDesign::Inverse(Plant const& plant, orvandsp::Spectrum const& way,
                                                   double gain) const {
    FilterWish wish;
    wish.ways = {{way}};
    wish.wanted = {transform.Delayed(plant.target, plant.delay)};
    wish.weights = {importance};
    wish.effort = effort;
    Filter filter = FitFilters(transform, wish, limits.length)[0];
    for (double& tap : filter) tap *= gain / plant.level;
    return filter;
}

TransauralDesign::Filter TransauralDesign::LoopFilter(Plant const& plant, orvandsp::Spectrum const& far,
                                                      orvandsp::Spectrum const& near) const {
    constexpr int mostRounds = 6;
    constexpr double tolerance = 0.02, dearer = 8.0, largest = 0.92;
    FilterWish wish;
    wish.ways = {{transform.Delayed(near, limits.blockLength)}};
    wish.wanted = {far};
    wish.weights = {importance};
    wish.effort = 1e-3;
    // A loop must stay below a gain of 1. Filling a notch of the near ear and cancelling must not add up beyond the
    // largest gain either: where they would, and above the range where cancelling counts, the loop gets what is left.
    const std::vector<double> broad = OctaveMean(plant.near);
    std::vector<double> most(transform.NumBins(), largest);
    for (std::size_t k = 0; k < most.size(); ++k) {
        wish.weights[0][k] /= plant.near[k] * plant.near[k];
        const double share = broad[k] / (plant.near[k] * maxGain);
        Complex around = plant.lr[k] * plant.rl[k] / (plant.ll[k] * plant.rr[k]);
        around *= std::min(1.0, largest * largest / std::max(std::abs(around), 1e-9));
        if (Frequency(k) > cancelledToHz || !(share <= std::abs(1.0 - around)))
            most[k] = std::min(largest, std::sqrt(std::max(0.0, 1.0 - share)));
        const double ratio = std::abs(far[k]) / std::max(std::abs(near[k]), 1e-9);
        if (ratio > most[k]) wish.wanted[0][k] *= most[k] / ratio;
    }
    Filter filter;
    double peak = 0.0;
    for (int round = 0; round < mostRounds; ++round) {
        filter = FitFilters(transform, wish, limits.length)[0];
        const orvandsp::Spectrum response = transform.Forward(filter);
        bool exceeds = false;
        peak = 0.0;
        for (std::size_t k = 0; k < most.size(); ++k) {
            peak = std::max(peak, std::abs(response[k]));
            if (std::abs(response[k]) <= most[k] + tolerance) continue;
            wish.weights[0][k] *= dearer;
            exceeds = true;
        }
        if (!exceeds) break;
    }
    for (double& tap : filter) tap *= std::min(1.0, (largest + tolerance) / peak);
    return filter;
}

TransauralDesign::Filter TransauralDesign::InverseDeterminant(Plant const& plant) const {
    // With s and t the singular values of the ways their product is the determinant, and the sum of their squares that
    // of the ways' squares: both are kept from falling below 1 / maxGain.
    const double floor = 1.0 / (maxGain * maxGain);
    std::vector<double> magnitude;
    for (std::size_t k = 0; k < transform.NumBins(); ++k) {
        const Complex determinant = plant.ll[k] * plant.rr[k] - plant.lr[k] * plant.rl[k];
        const double squares =
            std::norm(plant.ll[k]) + std::norm(plant.lr[k]) + std::norm(plant.rl[k]) + std::norm(plant.rr[k]);
        magnitude.push_back(std::abs(plant.target[k]) /
                            (plant.level * std::sqrt(std::norm(determinant) + floor * (squares + floor))));
    }
    Filter filter = transform.Inverse(transform.MinimumPhase(magnitude));
    filter.resize(limits.length);
    return filter;
}

std::vector<TransauralDesign::Filter> TransauralDesign::LeastSquares(Plant const& plant, bool rightEar) const {
    constexpr double crosstalkWeight = 4.0;  // of what the other ear hears, against colour
    FilterWish wish;
    wish.ways = {{plant.ll, plant.rl}, {plant.lr, plant.rr}};
    wish.wanted.assign(2, orvandsp::Spectrum(transform.NumBins()));
    wish.wanted[rightEar ? 1 : 0] = transform.Delayed(plant.target, plant.delay);
    wish.weights = {importance, importance};
    for (double& weight : wish.weights[rightEar ? 0 : 1]) weight *= crosstalkWeight;
    wish.effort = effort;
    std::vector<Filter> filters = FitFilters(transform, wish, limits.length);
    for (Filter& filter : filters)
        for (double& tap : filter) tap /= plant.level;
    return filters;
}

TransauralDesign::Filter TransauralDesign::Half(orvandsp::Spectrum const& a, double sign,
                                                orvandsp::Spectrum const& b) const {
    orvandsp::Spectrum sum(a.size());
    for (std::size_t k = 0; k < a.size(); ++k) sum[k] = 0.5 * (a[k] + sign * b[k]);
    Filter filter = transform.Inverse(sum);
    filter.resize(limits.length);
    return filter;
}

std::vector<float> TransauralDesign::Filters(Ways const& ways) const {
    const Plant plant = Prepare(ways);
    auto const& [ll, lr, rl, rr] = std::tie(plant.ll, plant.lr, plant.rl, plant.rr);
    std::vector<Filter> filters;
    switch (network) {
        case Lume::hrtfBinauralToTransauralShufflerSymmetric:
            for (const double sign : {1.0, -1.0}) {
                orvandsp::Spectrum both(ll.size());
                for (std::size_t k = 0; k < ll.size(); ++k) both[k] = ll[k] + sign * lr[k];
                filters.push_back(Inverse(plant, both, 0.25 * std::numbers::sqrt2));
            }
            break;
        case Lume::hrtfBinauralToTransauralShufflerAsymmetric:
            filters = {Half(rr, 1.0, rl), Half(ll, 1.0, lr), Half(rr, -1.0, rl), Half(ll, -1.0, lr)};
            filters.resize(6, InverseDeterminant(plant));
            break;
        case Lume::hrtfBinauralToTransauralFeedForwardSymmetric:
        case Lume::hrtfBinauralToTransauralFeedForwardAsymmetric:
            for (orvandsp::Spectrum const* const way : {&rr, &rl, &lr, &ll}) filters.push_back(Half(*way, 1.0, *way));
            filters.resize(6, InverseDeterminant(plant));
            break;
        case Lume::hrtfBinauralToTransauralRecursiveSymmetric:
        case Lume::hrtfBinauralToTransauralRecursiveAsymmetric:
            filters = {LoopFilter(plant, rl, rr), LoopFilter(plant, lr, ll), Inverse(plant, ll, 1.0),
                       Inverse(plant, rr, 1.0)};
            break;
        default:
            filters = LeastSquares(plant, false);
            for (Filter& filter : LeastSquares(plant, true)) filters.push_back(std::move(filter));
            break;
    }
    std::vector<float> all;
    for (Filter const& filter : filters)
        for (const double tap : filter) all.push_back(static_cast<float>(tap));
    return all;
}

}  // namespace program
