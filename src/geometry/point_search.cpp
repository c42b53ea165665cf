#include "geometry/point_search.h"

#include <algorithm>

#include "geometry/vector_algebra.h"

namespace Lume {

namespace {

template <typename Measure>
unsigned int ClosestIndex(CartesianVector const& point, std::vector<CartesianVector> const& points, Measure squared) {
    float best = 1e7f;
    unsigned int bestIndex = 0;
    for (unsigned int i = 0; i < points.size(); ++i) {
        const float distance = squared(points[i] - point);
        if (distance < best) {
            best = distance;
            bestIndex = i;
        }
    }
    return bestIndex;
}

}  // namespace

unsigned int GetClosestPointIndex(CartesianVector const& point, std::vector<CartesianVector> const& points) {
    return ClosestIndex(point, points, SquaredLength);
}

unsigned int GetClosestPointIndex2D(CartesianVector const& point, std::vector<CartesianVector> const& points) {
    return ClosestIndex(point, points, SquaredLength2D);
}

void GetNClosestPointIndex2D(CartesianVector const& point, std::vector<CartesianVector> const& points,
                             std::vector<unsigned int>& indices, unsigned int n) {
    std::vector<IndexedDist> distances(points.size());
    for (unsigned int i = 0; i < points.size(); ++i) distances[i] = {SquaredLength2D(points[i] - point), i};
    // The order of ties is nobody's business, but std::sort may leave the list when a distance isn't a number.
    std::stable_sort(distances.begin(), distances.end(), IndexedDist::sortIndexedDist);
    indices.assign(n, 0);
    const std::size_t count = std::min<std::size_t>(n, distances.size());
    for (std::size_t i = 0; i < count; ++i) indices[i] = distances[i].index;
}

}  // namespace Lume
