#include "geometry/cartesian_vector.h"

#include <cmath>

#include "geometry/spherical_vector.h"

namespace Lume {

void CartesianVector::Set(SphericalVector const& spherical) {
    x = std::cos(spherical.azimuth) * spherical.distance * std::cos(spherical.elevation);
    y = std::sin(spherical.azimuth) * spherical.distance * std::cos(spherical.elevation);
    z = std::sin(spherical.elevation) * spherical.distance;
}

}  // namespace Lume
