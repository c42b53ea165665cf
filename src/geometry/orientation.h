#pragma once

#include <array>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Where a listener looks. The head turns first to the right by the yaw, then up by the pitch, then its right ear goes
/// down by the roll, each about the head's own axes [degrees].
struct Orientation {
    float yaw = 0.0f;
    float pitch = 0.0f;
    float roll = 0.0f;

    bool operator==(Orientation const&) const = default;
};

/// A rotation: rows and columns x, y, z.
using RotationMatrix = std::array<std::array<double, 3>, 3>;

/// Takes directions in the room to directions as the listener's head has them.
RotationMatrix RoomToHead(Orientation const& orientation);

CartesianVector Rotated(RotationMatrix const& rotation, CartesianVector const& position);

}  // namespace Lume
