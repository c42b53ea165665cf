#pragma once

#include <cstddef>
#include <vector>

namespace program {

/// The samples of an impulse response at another rate, begun so many samples (of its own rate) late: interpolation by a
/// sinc under Blackman's window, with everything above half of either rate left out.
/// @param from, to  [Hz]
std::vector<double> Resample(std::vector<float> const& response, int from, int to, double lateSamples);

/// Takes a level out of impulse responses, with the least phase.
/// @param level  [dB] at `frequencies` [Hz]; beyond their ends it is held
void Equalise(std::vector<std::vector<double>>& responses, std::vector<double> const& level,
              std::vector<double> const& frequencies, int samplerate);

/// Impulse responses of one length, from half a millisecond before the earliest of them begins, faded out at their end.
/// @param maxLength  samples
std::vector<std::vector<float>> Trim(std::vector<std::vector<double>> const& responses, int samplerate,
                                     std::size_t maxLength);

}  // namespace program
