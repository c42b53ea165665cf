#include "decoders/transaural/loop_gain_limit.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace Lume {

namespace {

constexpr double largestGain = 0.98;
constexpr double widening = 0.98;    // of a pole's radius, at each step
constexpr double leastRadius = 0.5;  // no resonance is left
constexpr int maxSteps = 200;
constexpr int numFrequencies = 2048;  // an eleventh of a semitone at 10 kHz

double SquaredGain(std::span<float const> set, std::complex<double> z1) {
    const std::complex<double> z2 = z1 * z1;
    double gain = static_cast<double>(set[0]) * static_cast<double>(set[0]);
    for (std::size_t i = 1; i + 4 <= set.size(); i += 4)
        gain *= std::norm(1.0 + static_cast<double>(set[i]) * z1 + static_cast<double>(set[i + 1]) * z2) /
                std::norm(1.0 + static_cast<double>(set[i + 2]) * z1 + static_cast<double>(set[i + 3]) * z2);
    return gain;
}

struct Peak {
    double gain = 0.0;
    double angle = 0.0;  // [rad per sample]
};

Peak FindPeak(std::span<float const> first, std::span<float const> second) {
    Peak peak;
    for (int k = 0; k <= numFrequencies; ++k) {
        const double angle = std::numbers::pi * k / numFrequencies;
        const std::complex<double> z1 = std::polar(1.0, -angle);
        const double gain = std::sqrt(SquaredGain(first, z1) * SquaredGain(second, z1));
        if (gain > peak.gain) peak = {gain, angle};
    }
    return peak;
}

/// The a1 of the pair of complex poles nearest in frequency that still is a resonance, or null.
float* NearestResonance(std::span<float> first, std::span<float> second, double angle) {
    float* nearest = nullptr;
    double least = 0.25 * angle;  // others have no part in the peak
    for (std::span<float> const set : {first, second})
        for (std::size_t i = 1; i + 4 <= set.size(); i += 4) {
            const double a1 = static_cast<double>(set[i + 2]), a2 = static_cast<double>(set[i + 3]);
            if (a2 <= leastRadius * leastRadius || a1 * a1 >= 4.0 * a2) continue;
            const double distance = std::abs(std::acos(-a1 / (2.0 * std::sqrt(a2))) - angle);
            if (distance >= least) continue;
            least = distance;
            nearest = &set[i + 2];
        }
    return nearest;
}

}  // namespace

void LimitLoopGain(std::span<float> first, std::span<float> second) {
    for (int step = 0; step < maxSteps; ++step) {
        const Peak peak = FindPeak(first, second);
        if (peak.gain <= largestGain) return;
        float* const a = NearestResonance(first, second, peak.angle);
        if (a == nullptr) break;
        a[0] *= static_cast<float>(widening);
        a[1] *= static_cast<float>(widening * widening);
    }
    const double gain = FindPeak(first, second).gain;
    if (gain > largestGain) first[0] *= static_cast<float>(largestGain / gain);
}

}  // namespace Lume
