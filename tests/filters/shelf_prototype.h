#pragma once

#include <cmath>
#include <complex>
#include <numbers>

/// Gain [dB] of the analog prototype of a low shelf, (s + R t) / (s + t), after the bilinear transform: stepDb at 0 Hz,
/// half of it at the crossover, 0 at half the sample rate. Frequencies and rate in Hz.
inline double LowShelfDb(double stepDb, double crossover, double frequency, double rate) {
    const double ratio = std::pow(10.0, stepDb / 20.0);
    const double t = std::tan(std::numbers::pi * crossover / rate) / std::sqrt(ratio);
    const std::complex<double> s(0.0, std::tan(std::numbers::pi * frequency / rate));
    return 20.0 * std::log10(std::abs((s + ratio * t) / (s + t)));
}
