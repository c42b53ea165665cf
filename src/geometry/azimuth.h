#pragma once

namespace Lume {

/// Two conventions of azimuth stand side by side. The mathematical one, of SphericalVector and atan2(y, x): 0 on +x,
/// rising counter-clockwise seen from above. The listener's, which users see and panners compare, in degrees: 0
/// straight ahead, +90 right, -90 left, -180 straight behind.

constexpr float RadiansToDegrees = 57.295776f;
constexpr float DegreesToRadians = 0.017453292f;

/// Brings a value into [0, period) by repeated addition, then repeated subtraction, of the period.
///
/// Never by a remainder function: its rounding differs from that of the repeated sum. Values so large that adding the
/// period leaves them unchanged (infinities too) become 0, so that the loop always ends; not a number stays.
float Wrap(float value, float period);

/// The listener's azimuth [degrees] of a mathematical one [degrees], and the other way round: the rule is its own
/// inverse. The result lies in [-180, 180).
float SwapAzimuthConvention(float degrees);

}  // namespace Lume
