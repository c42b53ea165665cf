#include "geometry/point_search.h"

#include <algorithm>

namespace Lume {

namespace {

float SquaredDistance(CartesianVector const& a, CartesianVector const& b) {
    const float dx = a.x - b.x;
    const float dy = a.y - b.y;
    const float dz = a.z - b.z;
    return dx * dx + dy * dy + dz * dz;
}

float SquaredDistance2D(CartesianVector const& a, CartesianVector const& b) {
    const float dx = a.x - b.x;
    const float dy = a.y - b.y;
    return dx * dx + dy * dy;
}

template <typename Measure>
unsigned int ClosestIndex(CartesianVector const& point, std::vector<CartesianVector> const& points, Measure measure) {
    float best = 1e7f;
    unsigned int bestIndex = 0;
    for (unsigned int i = 0; i < points.size(); ++i) {
        const float distance = measure(point, points[i]);
        if (distance < best) {
            best = distance;
            bestIndex = i;
        }
    }
    return bestIndex;
}

}  // namespace

unsigned int GetClosestPointIndex(CartesianVector const& point, std::vector<CartesianVector> const& points) {
    return ClosestIndex(point, points, SquaredDistance);
}

unsigned int GetClosestPointIndex2D(CartesianVector const& point, std::vector<CartesianVector> const& points) {
    return ClosestIndex(point, points, SquaredDistance2D);
}

void GetNClosestPointIndex2D(CartesianVector const& point, std::vector<CartesianVector> const& points,
                             std::vector<unsigned int>& indices, unsigned int n) {
    std::vector<IndexedDist> distances(points.size());
    for (unsigned int i = 0; i < points.size(); ++i) distances[i] = {SquaredDistance2D(point, points[i]), i};
    // The order of ties is nobody's business, but std::sort may leave the list when a distance isn't a number.
    std::stable_sort(distances.begin(), distances.end(), IndexedDist::sortIndexedDist);
    indices.assign(n, 0);
    const std::size_t count = std::min<std::size_t>(n, distances.size());
    for (std::size_t i = 0; i < count; ++i) indices[i] = distances[i].index;
}

}  // namespace Lume
