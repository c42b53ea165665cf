#pragma once

#include <cmath>
#include <complex>
#include <numbers>
#include <span>
#include <vector>

#include "support/signals.h"

/// Meters for impulse responses, in double precision so that they add no error of their own.

/// The frequency response of an impulse response at one frequency.
/// @param frequency  [cycles per sample], 0.5 is half the sample rate
inline std::complex<double> ResponseAt(std::span<float const> impulseResponse, double frequency) {
    const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * frequency);
    std::complex<double> sum = 0.0;
    for (std::size_t n = impulseResponse.size(); n-- > 0;) sum = sum * step + static_cast<double>(impulseResponse[n]);
    return sum;
}

/// What a filter makes of an impulse, from silence.
template <typename Filter>
std::vector<float> ImpulseResponse(Filter& filter, std::size_t length) {
    std::vector<float> signal = MakeImpulse(length);
    filter.Clear();
    filter.Process(signal.data(), signal.data(), length);
    return signal;
}

/// [dB]
inline double GainDbAt(std::span<float const> impulseResponse, double frequency) {
    return 20.0 * std::log10(std::abs(ResponseAt(impulseResponse, frequency)));
}
