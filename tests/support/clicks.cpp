#include "support/clicks.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "math/real_transform.h"

namespace {

constexpr double removedHz = 200.0;    // on either side of the tone
constexpr double transitionHz = 20.0;  // from removed to kept
constexpr double fadeShare = 0.15;     // of the recording, at each end
constexpr double measuredShare = 0.2;  // where the measured part begins, and before the end where it ends

/// From 0 to 1 with three smooth derivatives, so that the fades leave nothing outside the tone's band.
double Smooth(double t) {
    if (t >= 1.0) return 1.0;
    return t * t * t * t * (35.0 + t * (-84.0 + t * (70.0 - 20.0 * t)));
}

/// How much of a frequency is kept.
double Kept(double offsetHz) {
    return std::abs(offsetHz) < removedHz ? 0.0 : Smooth((std::abs(offsetHz) - removedHz) / transitionHz);
}

}  // namespace

ToneResidual MeasureToneResidual(std::span<std::vector<float> const> channels, double sampleRate, double tone) {
    const std::size_t length = channels[0].size();
    const std::size_t size = std::bit_ceil(length);
    const double fade = fadeShare * static_cast<double>(length);
    const auto begin = static_cast<std::size_t>(measuredShare * static_cast<double>(length));

    double largestTone = 0.0;
    double largestResidual = 0.0;
    std::size_t peakPosition = 0;
    const orvandsp::RealTransform transform(size);
    for (std::vector<float> const& channel : channels) {
        std::vector<double> recording(size, 0.0);
        for (std::size_t t = 0; t < length; ++t)
            recording[t] = Smooth(static_cast<double>(t) / fade) * Smooth(static_cast<double>(length - 1 - t) / fade) *
                           static_cast<double>(channel[t]);
        orvandsp::Spectrum spectrum = transform.Forward(recording);
        for (std::size_t k = 0; k < spectrum.size(); ++k)
            spectrum[k] *= Kept(transform.FrequencyOf(k, sampleRate) - tone);
        const std::vector<double> residual = transform.Inverse(spectrum);
        for (std::size_t t = begin; t < length - begin; ++t) {
            largestTone = std::max(largestTone, std::abs(recording[t] - residual[t]));
            if (std::abs(residual[t]) > largestResidual) {
                largestResidual = std::abs(residual[t]);
                peakPosition = t;
            }
        }
    }
    return {20.0 * std::log10(largestResidual / largestTone), static_cast<double>(peakPosition) / sampleRate};
}
