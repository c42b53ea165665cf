#pragma once

#include <array>

namespace Lume {

/// Speed of sound of the head models [m/s].
constexpr float modelSpeedOfSound = 340.0f;
/// Time for one metre at that speed [ms].
constexpr float modelMsPerMetre = 2.9411764f;

/// First-order filter of what a sphere does to the sound at a point of its surface, for a FadedIIRFilter of order 1:
/// the numerator, then the denominator. The gain is 1 at 0 Hz and alpha = 1.05 + 0.95 cos(1.2 t) at half the sample
/// rate, after Brown and Duda, "A structural model for binaural sound synthesis", IEEE Trans. Speech and Audio Proc.
/// 6(5), 1998.
/// @param angle  t between the directions of the source and of the point [rad]
/// @param b      speed of sound / (radius * sample rate)
std::array<float, 4> HeadShadowCoefficients(float angle, float b);

/// What the point hears later than the centre of the sphere would, on the earliest way [ms]; 0 at the point that faces
/// the source. From an angle of pi on, and for what isn't a number, it falls to 0.
/// @param angle   [rad]
/// @param radius  [m]
float HeadShadowDelay(float angle, float radius);

}  // namespace Lume
