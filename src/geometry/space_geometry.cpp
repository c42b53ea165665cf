#include "geometry/space_geometry.h"

#include <cmath>

#include "geometry/vector_algebra.h"

namespace Lume {

namespace {

constexpr float MillisecondsPerMetre = 2.9411764f;  // 1000 / 340 m/s

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
    for (CartesianVector const& point : points) sum = sum + point;
    if (!points.empty()) sum = sum * (1.0f / static_cast<float>(points.size()));
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
    const CartesianVector d = p2 - p1;
    const float a = Dot(d, d);
    const float b = 2.0f * Dot(p1 - centre, d);
    const float c = Dot(centre, centre) + Dot(p1, p1) - radius * radius - 2.0f * Dot(centre, p1);
    const float discriminant = b * b - 4.0f * a * c;
    if (discriminant < 0.0f) return false;
    if (discriminant == 0.0f) {
        first = p1 + d * (b / (-2.0f * a));
        second = first;
        return true;
    }
    const float root = std::sqrt(discriminant);
    const CartesianVector further = p1 + d * ((root - b) / (2.0f * a));
    second = p1 + d * ((-b - root) / (2.0f * a));
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
