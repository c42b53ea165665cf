#pragma once

#include <span>
#include <vector>

/// Meters for reverberation.

/// The decay time T30 of an impulse response [s]: the time for 60 dB, read from a straight line through the part from
/// -5 to -35 dB of the backward integrated energy (M. R. Schroeder, "New method of measuring reverberation time",
/// J. Acoust. Soc. Am. 37(3), 1965; ISO 3382).
/// @param energy  energy of each sample, summed over all channels; must fall by clearly more than 35 dB
double DecayTimeOf(std::span<double const> energy, double sampleRate);

/// The energy of each sample within an octave band, summed over channels of equal length. The band is cut out by
/// Butterworth filters of order 6 at its edges, 18 dB down at the centres of its neighbours.
/// @param centre  [Hz]; its upper edge, 1.41 times as high, must lie below half the sample rate
std::vector<double> OctaveBandEnergy(std::span<std::vector<float> const> channels, double sampleRate, double centre);

/// T30 [s] of an octave band, from the energies of all channels.
double MeasureDecay(std::span<std::vector<float> const> channels, double sampleRate, double centre);
