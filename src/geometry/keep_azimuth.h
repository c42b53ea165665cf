#pragma once

#include <cmath>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Keeps a source that moves straight above or below the listener on the side from which it came. There it has no
/// azimuth, and what its coordinates hold is rounding: cosf of a right angle is below 0, which on a ring would put it
/// behind the listener.
/// @param before  where it was
/// @return a place 0.0001 degrees beside the vertical, or the position itself if it isn't there
inline CartesianVector KeepAzimuth(CartesianVector const& position, CartesianVector const& before) {
    constexpr float vertical = 1e-6f, beside = 2e-6f;  // by the height
    const float height = std::abs(position.z);
    // The centre of the head stays what it is.
    if (height == 0.0f || std::hypot(position.x, position.y) > vertical * height) return position;
    const float length = std::hypot(before.x, before.y);
    if (length == 0.0f) return {0.0f, beside * height, position.z};
    return {before.x / length * beside * height, before.y / length * beside * height, position.z};
}

}  // namespace Lume
