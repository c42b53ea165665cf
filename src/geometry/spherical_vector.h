#pragma once

namespace Lume {

struct CartesianVector;

/// A position by direction and distance, in the frame of CartesianVector.
///
/// The azimuth is the mathematical one, not the listener's (geometry/azimuth.h turns one into the other). A plain
/// value; aggregate initialisation gives azimuth, distance, elevation in this order.
struct SphericalVector {
    float azimuth = 0.0f;    // [rad], 0 on +x, rising counter-clockwise seen from above: pi/2 is straight ahead
    float distance = 0.0f;   // [m]
    float elevation = 0.0f;  // [rad], 0 in the horizontal plane, positive upward

    /// Takes over the position of a Cartesian vector. The origin has azimuth 0 and elevation 0.
    SphericalVector& operator=(CartesianVector const& cartesian);
};

}  // namespace Lume
