#include "geometry/azimuth_distance_elevation.h"

#include "geometry/azimuth.h"
#include "geometry/spherical_vector.h"
#include "geometry/vector_algebra.h"

namespace Lume {

namespace {}  // namespace

void FoldElevation(float& azimuthDegrees, float& elevationDegrees) {
    elevationDegrees = Wrap(elevationDegrees + 180.0f, 360.0f) - 180.0f;
    if (elevationDegrees > 90.0f) {
        azimuthDegrees += 180.0f;
        elevationDegrees = 90.0f - elevationDegrees;
    } else if (elevationDegrees < -90.0f) {
        azimuthDegrees += 180.0f;
        elevationDegrees = -90.0f - elevationDegrees;
    }
}

CartesianVector FromAzimuthDistanceElevation(float azimuthDegrees, float distance, float elevationDegrees) {
    float azimuth = SwapAzimuthConvention(azimuthDegrees) * DegreesToRadians;
    // The fold again, in radians: its rounding differs from that of degrees.
    float elevation = Wrap(DegreesToRadians * elevationDegrees + pi, twoPi) - pi;
    if (elevation > halfPi) {
        azimuth += pi;
        elevation = halfPi - elevation;
    } else if (elevation < -halfPi) {
        azimuth += pi;
        elevation = -halfPi - elevation;
    }
    if (distance < 0.0f) {
        distance = -distance;
        elevation = -elevation;
        azimuth += pi;
    }
    azimuth = Wrap(azimuth + pi, twoPi) - pi;
    CartesianVector position;
    position = SphericalVector{azimuth, distance, elevation};
    return position;
}

}  // namespace Lume
