#include "geometry/spherical_vector.h"

#include <cmath>

#include "geometry/cartesian_vector.h"

namespace Lume {

void SphericalVector::Set(CartesianVector const& cartesian) {
    distance = cartesian.radius();
    elevation = distance != 0.0f ? std::asin(cartesian.z / distance) : 0.0f;
    azimuth = std::atan2(cartesian.y, cartesian.x);
}

}  // namespace Lume
