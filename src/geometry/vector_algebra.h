#pragma once

#include <cmath>

#include "geometry/cartesian_vector.h"

/// The algebra of positions. Sums run from x to z: that order is part of the results, and is not that of
/// CartesianVector::radius(), which starts with y.
namespace Lume {

constexpr float pi = 3.1415927f;
constexpr float twoPi = 6.2831855f;
constexpr float halfPi = 1.5707964f;

inline CartesianVector operator+(CartesianVector const& a, CartesianVector const& b) noexcept {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

inline CartesianVector operator-(CartesianVector const& a, CartesianVector const& b) noexcept {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline CartesianVector operator*(CartesianVector const& v, float factor) noexcept {
    return {v.x * factor, v.y * factor, v.z * factor};
}

inline CartesianVector operator/(CartesianVector const& v, float divisor) noexcept {
    return {v.x / divisor, v.y / divisor, v.z / divisor};
}

inline bool operator==(CartesianVector const& a, CartesianVector const& b) noexcept {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

inline float Dot(CartesianVector const& a, CartesianVector const& b) noexcept {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline CartesianVector Cross(CartesianVector const& a, CartesianVector const& b) noexcept {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline float SquaredLength(CartesianVector const& v) noexcept {
    return Dot(v, v);
}

/// In the plane.
inline float SquaredLength2D(CartesianVector const& v) noexcept {
    return v.x * v.x + v.y * v.y;
}

inline float Length(CartesianVector const& v) noexcept {
    return std::sqrt(SquaredLength(v));
}

/// By radius().
inline float Distance(CartesianVector const& a, CartesianVector const& b) {
    return (a - b).radius();
}

/// The direction of a vector, at distance 1; one without a direction stays.
inline CartesianVector Unit(CartesianVector const& v) noexcept {
    const float length = Length(v);
    return length > 0.0f ? v / length : v;
}

}  // namespace Lume
