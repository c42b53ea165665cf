#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace program {

/// The minimum-phase impulse response with a given level, by way of the cepstrum (Oppenheim and Schafer, "Digital
/// Signal Processing", 1975).
/// @param level        [dB] at `frequencies`; held beyond their ends, and linear between them
/// @param frequencies  [Hz], rising
/// @param warping      0 for a plain axis; between 0 and 1 the response on an axis that a first-order allpass has bent,
///                     with the low frequencies spread
/// @param length       samples, at most 1024
std::vector<double> MinimumPhaseResponse(std::span<double const> level, std::span<double const> frequencies,
                                         double samplerate, double warping, std::size_t length);

}  // namespace program
