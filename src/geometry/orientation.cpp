#include "geometry/orientation.h"

#include <cmath>
#include <numbers>

namespace Lume {

RotationMatrix RoomToHead(Orientation const& orientation) {
    constexpr double toRadians = std::numbers::pi / 180.0;
    const double cy = std::cos(toRadians * static_cast<double>(orientation.yaw));
    const double sy = std::sin(toRadians * static_cast<double>(orientation.yaw));
    const double cp = std::cos(toRadians * static_cast<double>(orientation.pitch));
    const double sp = std::sin(toRadians * static_cast<double>(orientation.pitch));
    const double cr = std::cos(toRadians * static_cast<double>(orientation.roll));
    const double sr = std::sin(toRadians * static_cast<double>(orientation.roll));
    // The head's axes in the room: to the right, ahead and up.
    return {{{cy * cr + sy * sp * sr, -sy * cr + cy * sp * sr, -cp * sr},
             {sy * cp, cy * cp, sp},
             {cy * sr - sy * sp * cr, -sy * sr - cy * sp * cr, cp * cr}}};
}

CartesianVector Rotated(RotationMatrix const& rotation, CartesianVector const& p) {
    const auto component = [&](std::array<double, 3> const& row) {
        return static_cast<float>(row[0] * static_cast<double>(p.x) + row[1] * static_cast<double>(p.y) +
                                  row[2] * static_cast<double>(p.z));
    };
    return {component(rotation[0]), component(rotation[1]), component(rotation[2])};
}

}  // namespace Lume
