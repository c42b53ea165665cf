#pragma once

#include <concepts>

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

    /// Takes over the position of a Cartesian vector. The origin has azimuth 0 and elevation 0. A template, so that
    /// three numbers in braces can be assigned too: they are taken for azimuth, distance, elevation.
    template <std::same_as<CartesianVector> Vector>
    SphericalVector& operator=(Vector const& cartesian) {
        Set(cartesian);
        return *this;
    }

private:
    void Set(CartesianVector const& cartesian);
};

}  // namespace Lume
