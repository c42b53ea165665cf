#include "orvanverb-live/room/position.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "geometry/azimuth_distance_elevation.h"
#include "geometry/vector_algebra.h"

namespace live {

namespace {

constexpr float smallestDistance = 1e-3f;  // [m]
constexpr double degrees = 180.0 / std::numbers::pi;

/// To a ten-thousandth: what was set is what is told.
float Rounded(double value) {
    return static_cast<float>(std::round(1e4 * value) / 1e4);
}

}  // namespace

Direction DirectionOf(Lume::CartesianVector const& p) {
    const auto x = static_cast<double>(p.x), y = static_cast<double>(p.y), z = static_cast<double>(p.z);
    const double across = std::hypot(x, y), distance = std::hypot(across, z);
    return {across > 0.0 ? Rounded(degrees * std::atan2(x, y)) : 0.0f,
            distance > 0.0 ? Rounded(degrees * std::atan2(z, across)) : 0.0f, Rounded(distance)};
}

Lume::CartesianVector PositionAt(Direction const& direction) {
    // Turns beyond the first are left out: the conversion would count them one by one.
    return Lume::FromAzimuthDistanceElevation(std::remainder(direction.azimuth, 360.0f),
                                              std::max(direction.distance, smallestDistance),
                                              std::clamp(direction.elevation, -90.0f, 90.0f));
}

float Decibels(float linear) {
    return linear > 1e-6f ? 20.0f * std::log10(linear) : -120.0f;
}

}  // namespace live
