#pragma once

#include <algorithm>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// How far from the listener a place may be along each axis [m]: its square is still exact enough to divide by.
constexpr float reach = 1e6f;

/// The place, or the one at the end of reach.
inline CartesianVector WithinReach(CartesianVector const& position) {
    return {std::clamp(position.x, -reach, reach), std::clamp(position.y, -reach, reach),
            std::clamp(position.z, -reach, reach)};
}

}  // namespace Lume
