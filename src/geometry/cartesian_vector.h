#pragma once

namespace Lume {

struct SphericalVector;

/// A position in the frame that the whole system shares: right-handed, centred on the listener, in metres.
///
/// A plain value; aggregate initialisation gives x, y, z in this order.
struct CartesianVector {
    float x = 0.0f;  // to the listener's right
    float y = 0.0f;  // straight ahead
    float z = 0.0f;  // up

    /// Takes over the position that a spherical vector describes.
    CartesianVector& operator=(SphericalVector const& spherical);

    /// Distance from the origin [m].
    float radius() const;
};

}  // namespace Lume
