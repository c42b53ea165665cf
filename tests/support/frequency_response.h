#pragma once

#include <cmath>
#include <complex>
#include <numbers>
#include <span>

/// Meters for impulse responses, in double precision so that they add no error of their own.

/// The frequency response of an impulse response at one frequency.
/// @param frequency  [cycles per sample], 0.5 is half the sample rate
inline std::complex<double> ResponseAt(std::span<float const> impulseResponse, double frequency) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < impulseResponse.size(); ++n)
        sum += static_cast<double>(impulseResponse[n]) *
               std::polar(1.0, -2.0 * std::numbers::pi * frequency * static_cast<double>(n));
    return sum;
}

/// [dB]
inline double GainDbAt(std::span<float const> impulseResponse, double frequency) {
    return 20.0 * std::log10(std::abs(ResponseAt(impulseResponse, frequency)));
}
