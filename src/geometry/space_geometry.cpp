#include "geometry/space_geometry.h"

#include <cmath>

namespace Lume {

namespace {

constexpr float MillisecondsPerMetre = 2.9411764f;  // 1000 / 340 m/s

float Dot(CartesianVector const& a, CartesianVector const& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

CartesianVector Difference(CartesianVector const& a, CartesianVector const& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

float Distance(CartesianVector const& a, CartesianVector const& b) {
    return Difference(a, b).radius();
}

CartesianVector PointOnLine(CartesianVector const& p, float t, CartesianVector const& d) {
    return {p.x + t * d.x, p.y + t * d.y, p.z + t * d.z};
}

/// Moves a point along its ray from the origin onto the sphere of that radius.
/// @return how far it moved [m]
float ProjectOnSphere(CartesianVector const& point, float radius, CartesianVector& projected) {
    const CartesianVector origin;
    CartesianVector first;
    CartesianVector second;
    if (!IntersectionBetweenLineAndSphere(origin, radius, origin, point, first, second)) {
        projected = point;
        return 0.0f;
    }
    const float toFirst = Distance(point, first);
    const float toSecond = Distance(point, second);
    if (toFirst > toSecond) {
        projected = second;
        return toSecond;
    }
    projected = first;
    return toFirst;
}

}  // namespace

void ComputeBarycenter(std::vector<CartesianVector> const& points, CartesianVector& result) {
    CartesianVector sum;
    for (CartesianVector const& point : points) {
        sum.x += point.x;
        sum.y += point.y;
        sum.z += point.z;
    }
    if (!points.empty()) {
        const float scale = 1.0f / static_cast<float>(points.size());
        sum = CartesianVector{sum.x * scale, sum.y * scale, sum.z * scale};
    }
    result = sum;
}

float GetRadiusOfTheLargestSphereEncompassing(std::vector<CartesianVector> const& points) {
    return GetRadiusOfTheLargestSphereEncompassing(points, CartesianVector{});
}

float GetRadiusOfTheLargestSphereEncompassing(std::vector<CartesianVector> const& points,
                                              CartesianVector const& centre) {
    float largest = 0.0f;
    for (CartesianVector const& point : points) {
        const float distance = Distance(point, centre);
        if (distance > largest) largest = distance;
    }
    return largest;
}

bool IntersectionBetweenLineAndSphere(CartesianVector const& centre, float radius, CartesianVector const& p1,
                                      CartesianVector const& p2, CartesianVector& first, CartesianVector& second) {
    const CartesianVector d = Difference(p2, p1);
    const float a = Dot(d, d);
    const float b = 2.0f * Dot(Difference(p1, centre), d);
    const float c = Dot(centre, centre) + Dot(p1, p1) - radius * radius - 2.0f * Dot(centre, p1);
    const float discriminant = b * b - 4.0f * a * c;
    if (discriminant < 0.0f) return false;
    if (discriminant == 0.0f) {
        first = PointOnLine(p1, b / (-2.0f * a), d);
        second = first;
        return true;
    }
    const float root = std::sqrt(discriminant);
    const CartesianVector further = PointOnLine(p1, (root - b) / (2.0f * a), d);
    second = PointOnLine(p1, (-b - root) / (2.0f * a), d);
    first = further;
    return true;
}

void ComputeSpeakersTimeDelays(std::vector<CartesianVector> const& points, float& radius,
                               std::vector<CartesianVector>& projected, std::vector<float>& delays) {
    radius = GetRadiusOfTheLargestSphereEncompassing(points);
    projected.resize(points.size());
    delays.assign(points.size(), 0.0f);
    for (std::size_t i = 0; i < points.size(); ++i)
        delays[i] = ProjectOnSphere(points[i], radius, projected[i]) * MillisecondsPerMetre;
}

void ComputeSpeakersProjectionOnSphere(std::vector<CartesianVector> const& points, float& radius,
                                       std::vector<CartesianVector>& projected) {
    radius = GetRadiusOfTheLargestSphereEncompassing(points);
    projected.resize(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) ProjectOnSphere(points[i], radius, projected[i]);
}

}  // namespace Lume
