#include "support/clicks.h"

#include <bit>
#include <cmath>
#include <complex>
#include <numbers>
#include <utility>

namespace {

using Spectrum = std::vector<std::complex<double>>;

constexpr double removedHz = 200.0;    // on either side of the tone
constexpr double transitionHz = 20.0;  // from removed to kept
constexpr double fadeShare = 0.15;     // of the recording, at each end
constexpr double measuredShare = 0.2;  // where the measured part begins, and before the end where it ends

/// In place, radix 2; the inverse lacks the factor 1/N.
void Transform(Spectrum& x, bool inverse) {
    const std::size_t size = x.size();
    for (std::size_t i = 1, j = 0; i < size; ++i) {
        std::size_t bit = size >> 1;
        for (; j & bit; bit >>= 1) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(x[i], x[j]);
    }
    const double turn = (inverse ? 2.0 : -2.0) * std::numbers::pi;
    Spectrum twiddles(size / 2);
    for (std::size_t k = 0; k < size / 2; ++k)
        twiddles[k] = std::polar(1.0, turn * static_cast<double>(k) / static_cast<double>(size));
    for (std::size_t span = 1; span < size; span *= 2)
        for (std::size_t start = 0; start < size; start += 2 * span)
            for (std::size_t k = 0; k < span; ++k) {
                const std::complex<double> w = twiddles[k * (size / (2 * span))];
                const std::complex<double> a = x[start + k];
                const std::complex<double> b{
                    x[start + k + span].real() * w.real() - x[start + k + span].imag() * w.imag(),
                    x[start + k + span].real() * w.imag() + x[start + k + span].imag() * w.real()};
                x[start + k] = a + b;
                x[start + k + span] = a - b;
            }
}

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
    // Two real channels share a transform, as its real and its imaginary part: the band is symmetric.
    for (std::size_t c = 0; c < channels.size(); c += 2) {
        const bool pair = c + 1 < channels.size();
        Spectrum recording(size);
        for (std::size_t t = 0; t < length; ++t) {
            const double window =
                Smooth(static_cast<double>(t) / fade) * Smooth(static_cast<double>(length - 1 - t) / fade);
            recording[t] = {window * static_cast<double>(channels[c][t]),
                            pair ? window * static_cast<double>(channels[c + 1][t]) : 0.0};
        }
        Spectrum residual = recording;
        Transform(residual, false);
        for (std::size_t k = 0; k < size; ++k) {
            const std::size_t bin = std::min(k, size - k);
            residual[k] *= Kept(static_cast<double>(bin) * sampleRate / static_cast<double>(size) - tone);
        }
        Transform(residual, true);
        const auto look = [&](double whole, double rest, std::size_t t) {
            largestTone = std::max(largestTone, std::abs(whole - rest));
            if (std::abs(rest) > largestResidual) {
                largestResidual = std::abs(rest);
                peakPosition = t;
            }
        };
        for (std::size_t t = begin; t < length - begin; ++t) {
            const std::complex<double> rest = residual[t] / static_cast<double>(size);
            look(recording[t].real(), rest.real(), t);
            look(recording[t].imag(), rest.imag(), t);
        }
    }
    return {20.0 * std::log10(largestResidual / largestTone), static_cast<double>(peakPosition) / sampleRate};
}
