#include "measure/band_filter.h"

#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace orvanmeasure {

namespace {

constexpr int order = 6;  // of the low-pass prototype; the band-pass has twice as many poles

/// Runs all sections over samples in an order of time that the iterator tells: side by side, as each waits for its own
/// last sample only.
template <typename Iterator, typename Sections>
void Run(Iterator begin, Iterator end, double gain, Sections const& sections) {
    if (sections.empty()) return;
    std::array<double, order> s1{}, s2{};
    for (Iterator at = begin; at != end; ++at) {
        double x = *at;
        for (std::size_t k = 0; k < order; ++k) {
            x *= gain;
            const double y = x + s1[k];
            s1[k] = s2[k] - sections[k].a1 * y;
            s2[k] = -x - sections[k].a2 * y;
            x = y;
        }
        *at = x;
    }
}

}  // namespace

BandFilter::BandFilter(Band const& band, double sampleRate) {
    if (band.IsWhole()) return;
    using Complex = std::complex<double>;
    constexpr double pi = std::numbers::pi;
    // The bilinear transform, with the edges where they belong.
    const double low = std::tan(pi * band.lowHz / sampleRate);
    const double high = std::tan(pi * band.highHz / sampleRate);
    const double width = high - low, centreSquared = low * high;
    for (int k = 0; k < order / 2; ++k) {
        const Complex prototype = std::polar(1.0, pi * (0.5 + (2 * k + 1) / (2.0 * order)));
        // Each pole p of the prototype gives the two roots of s^2 - p width s + centre^2; their conjugates come from
        // p's.
        const Complex half = 0.5 * width * prototype;
        const Complex root = std::sqrt(half * half - centreSquared);
        for (const Complex s : {half + root, half - root}) {
            const Complex z = (1.0 + s) / (1.0 - s);
            sections.push_back({-2.0 * z.real(), std::norm(z)});
        }
    }
    const double w = 2.0 * std::atan(std::sqrt(centreSquared));
    const Complex z = std::polar(1.0, -w);  // z^-1 at the centre
    double magnitude = 1.0;
    for (Section const& section : sections)
        magnitude *= std::abs((1.0 - z * z) / (1.0 + section.a1 * z + section.a2 * z * z));
    gain = std::pow(magnitude, -1.0 / static_cast<double>(sections.size()));
    // The slowest poles lie sin(pi / 2n) half widths from the axis: 8 of their time constants are 70 dB.
    const double slowest = std::sin(pi / (2.0 * order)) * pi * band.WidthHz();  // [1/s]
    ringLength = static_cast<std::size_t>(std::ceil(8.0 / slowest * sampleRate));
}

void BandFilter::Forward(std::span<double> signal) const {
    Run(signal.begin(), signal.end(), gain, sections);
}

void BandFilter::Backward(std::span<double> signal) const {
    Run(signal.rbegin(), signal.rend(), gain, sections);
}

void BandFilter::ZeroPhase(std::span<double> signal) const {
    Forward(signal);
    Backward(signal);
}

}  // namespace orvanmeasure
