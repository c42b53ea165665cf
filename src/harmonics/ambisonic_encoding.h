#pragma once

#include <vector>

#include "harmonics/spherical_harmonics.h"

namespace Lume {

/// Gains that encode a plane wave into ambisonic channels, and weights for decoding them: real harmonics, in double
/// precision. Angles as for the harmonics. None of these functions is meant for the audio thread.

/// The gain of one channel: V cos(m azimuth) for m >= 0, V sin(|m| azimuth) for m < 0, with V the magnitude of the
/// spherical harmonic.
double AmbisonicEncodingComponent(unsigned int degree, int order, double colatitude, double azimuth,
                                  SphericalHarmonicsNormalization normalization);
double AmbisonicEncodingComponent(unsigned int degree, int order, CartesianVector const& position,
                                  SphericalHarmonicsNormalization normalization);

/// The gains of all channels up to an ambisonic order, (order + 1)^2 of them; all 0 for an unknown sorting.
std::vector<double> AmbisonicEncodingVector(unsigned int order, double colatitude, double azimuth,
                                            SphericalHarmonicsNormalization normalization,
                                            SphericalHarmonicsSorting sorting);
std::vector<double> AmbisonicEncodingVector(unsigned int order, CartesianVector const& position,
                                            SphericalHarmonicsNormalization normalization,
                                            SphericalHarmonicsSorting sorting);

/// The same for the plane: the channels with |m| = l alone, 2 order + 1 of them.
std::vector<double> AmbisonicEncodingVector2D(unsigned int order, double colatitude, double azimuth,
                                              SphericalHarmonicsNormalization normalization,
                                              SphericalHarmonicsSorting sorting);
std::vector<double> AmbisonicEncodingVector2D(unsigned int order, CartesianVector const& position,
                                              SphericalHarmonicsNormalization normalization,
                                              SphericalHarmonicsSorting sorting);

/// Weights of a decoder, one per channel in the sorting IncreasingDegrees, all 1 for degree 0 (Daniel, "Représentation
/// de champs acoustiques", thesis, Université Paris 6, 2000).
///
/// max-rE makes the energy vector as long as the order allows: what the ear uses above some 700 Hz.
void AmbisonicMaxReOptimizedGains(unsigned int order, std::vector<double>& gains);
void AmbisonicMaxReOptimizedGains2D(unsigned int order, std::vector<double>& gains);
/// In-phase: no loudspeaker works against the others, for listeners off the centre.
void AmbisonicInPhaseOptimizedGains(unsigned int order, std::vector<double>& gains);
void AmbisonicInPhaseOptimizedGains2D(unsigned int order, std::vector<double>& gains);

}  // namespace Lume
