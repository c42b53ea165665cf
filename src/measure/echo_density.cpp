#include "measure/echo_density.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvanmeasure {

namespace {

constexpr double windowSeconds = 0.02;
constexpr double stepSeconds = 0.001;

/// Of one channel around one sample. What lies outside the response counts as silence.
double DensityAt(std::span<float const> channel, std::size_t centre, std::vector<double> const& window) {
    const std::size_t half = window.size() / 2;
    const std::size_t first = centre < half ? half - centre : 0;  // within the window
    const std::size_t last = std::min(window.size(), channel.size() + half - centre);
    double variance = 0.0;
    for (std::size_t i = first; i < last; ++i) {
        const auto value = static_cast<double>(channel[centre + i - half]);
        variance += window[i] * value * value;
    }
    double outside = 0.0;
    for (std::size_t i = first; i < last; ++i) {
        const auto value = static_cast<double>(channel[centre + i - half]);
        if (value * value > variance) outside += window[i];
    }
    return outside / std::erfc(1.0 / std::numbers::sqrt2);  // the share of Gaussian noise beyond its deviation
}

Figure FirstAt(std::vector<float> const& values, float bound) {
    const auto at = std::find_if(values.begin(), values.end(), [=](float value) { return value >= bound; });
    if (at == values.end()) return Figure::None(Missing::neverReached);
    return Figure::Of(static_cast<double>(at - values.begin()) * stepSeconds);
}

}  // namespace

EchoDensity MeasureEchoDensity(Channels response, double sampleRate, std::size_t begin, std::size_t end) {
    std::vector<double> window(static_cast<std::size_t>(windowSeconds * sampleRate) | 1u);
    const double turn = 2.0 * std::numbers::pi / static_cast<double>(window.size());
    for (std::size_t i = 0; i < window.size(); ++i)  // Hann's, with sum 1
        window[i] = (1.0 - std::cos(turn * (static_cast<double>(i) + 0.5))) / static_cast<double>(window.size());

    EchoDensity density;
    density.stepSeconds = stepSeconds;
    for (double seconds = 0.0;; seconds = static_cast<double>(density.values.size()) * stepSeconds) {
        const std::size_t centre = begin + static_cast<std::size_t>(seconds * sampleRate);
        if (centre >= end) break;
        double sum = 0.0;
        for (std::span<float const> channel : response) sum += DensityAt(channel, centre, window);
        density.values.push_back(static_cast<float>(sum / static_cast<double>(response.size())));
    }
    density.mixingTime = FirstAt(density.values, 1.0f);
    density.nearlyMixed = FirstAt(density.values, 0.9f);
    return density;
}

}  // namespace orvanmeasure
