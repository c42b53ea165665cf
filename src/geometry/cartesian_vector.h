#pragma once

#include <cmath>
#include <concepts>

namespace Lume {

struct SphericalVector;

/// A position in the frame that the whole system shares: right-handed, centred on the listener, in metres.
///
/// A plain value; aggregate initialisation gives x, y, z in this order.
struct CartesianVector {
    float x = 0.0f;  // to the listener's right
    float y = 0.0f;  // straight ahead
    float z = 0.0f;  // up

    /// Takes over the position that a spherical vector describes. A template, so that three numbers in braces can be
    /// assigned too: they are taken for x, y, z.
    template <std::same_as<SphericalVector> Vector>
    CartesianVector& operator=(Vector const& spherical) {
        Set(spherical);
        return *this;
    }

    /// Distance from the origin [m].
    float radius() const { return std::sqrt(y * y + x * x + z * z); }

private:
    void Set(SphericalVector const& spherical);
};

}  // namespace Lume
