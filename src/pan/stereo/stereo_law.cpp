#include "pan/stereo/stereo_law.h"

#include <algorithm>
#include <cmath>

#include "geometry/vector_algebra.h"

namespace Lume {

float ListenerAzimuthRad(CartesianVector const& position) {
    return halfPi - std::atan2(position.y, position.x);
}

float Directivity(CartesianVector const& position) {
    const float distance = position.radius();
    const float elevation = distance > 0.0f ? std::asin(position.z / distance) : 0.0f;
    return std::clamp(std::cos(elevation) * distance, 0.0f, 1.0f);
}

}  // namespace Lume
