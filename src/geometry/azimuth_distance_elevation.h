#pragma once

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Brings a direction given in degrees to an elevation within [-90, 90]: beyond a pole it comes down on the other side,
/// with the azimuth turned by half a turn. The fold is taken about the pole: 100 becomes -10, not 80 (kept:
/// quirks.md 13).
void FoldElevation(float& azimuthDegrees, float& elevationDegrees);

/// The position at the listener's azimuth [degrees], distance [m] and elevation [degrees]. Elevations beyond a pole are
/// folded as by FoldElevation; a negative distance points the other way.
CartesianVector FromAzimuthDistanceElevation(float azimuthDegrees, float distance, float elevationDegrees);

}  // namespace Lume
