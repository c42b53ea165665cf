#include "geometry/plane_geometry.h"

#include <algorithm>
#include <cmath>

#include "geometry/vector_algebra.h"

namespace Lume {

int CompareAzimuth(void const* a, void const* b) {
    auto const& p = *static_cast<CartesianVector const*>(a);
    auto const& q = *static_cast<CartesianVector const*>(b);
    const float azimuthP = std::atan2(p.y, p.x);
    const float azimuthQ = std::atan2(q.y, q.x);
    if (azimuthP < azimuthQ) return -1;
    return azimuthP > azimuthQ ? 1 : 0;
}

void SortByAscendingAzimuth(std::vector<CartesianVector>& points) {
    // qsort leaves the order of equal azimuths to the C library.
    std::stable_sort(points.begin(), points.end(),
                     [](CartesianVector const& a, CartesianVector const& b) { return CompareAzimuth(&a, &b) < 0; });
}

float AreaOf2DPolygon(std::vector<CartesianVector> const& points) {
    if (points.size() < 3) return 0.0f;
    float twiceArea = 0.0f;
    for (std::size_t i = 0; i < points.size(); ++i) {
        CartesianVector const& p = points[i];
        CartesianVector const& q = points[(i + 1) % points.size()];
        twiceArea += p.x * q.y - q.x * p.y;
    }
    return twiceArea * 0.5f;
}

bool IsInside2DPolygon(CartesianVector const& point, std::vector<CartesianVector> const& points) {
    bool inside = false;
    for (std::size_t i = 0; i < points.size(); ++i) {
        CartesianVector const& p = points[i];
        CartesianVector const& before = points[i == 0 ? points.size() - 1 : i - 1];
        if ((point.y > p.y) != (point.y > before.y) &&
            point.x > (point.y - p.y) / (before.y - p.y) * (before.x - p.x) + p.x)
            inside = !inside;
    }
    return inside;
}

bool BelongsToLine2D(CartesianVector const& a, CartesianVector const& b, CartesianVector const& p) {
    const float dx = b.x - a.x;
    if (dx == 0.0f) return a.x == p.x;
    const float m = (b.y - a.y) / dx;
    return m * p.x + b.y - m * b.x == p.y;
}

bool BelongsToSegment2D(CartesianVector const& a, CartesianVector const& b, CartesianVector const& p) {
    return BelongsToLine2D(a, b, p) && p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) &&
           p.y >= std::min(a.y, b.y) && p.y <= std::max(a.y, b.y);
}

bool Intersect2D(CartesianVector const& a1, CartesianVector const& a2, CartesianVector const& b1,
                 CartesianVector const& b2, CartesianVector& result) {
    if (SquaredLength2D(a1 - a2) == 0.0f || SquaredLength2D(b1 - b2) == 0.0f) return false;
    const bool aIsVertical = a1.x == a2.x;
    const bool bIsVertical = b1.x == b2.x;
    if (aIsVertical && bIsVertical) return false;
    if (aIsVertical) {
        const float m2 = (b2.y - b1.y) / (b2.x - b1.x);
        const float y = a1.x * m2 + b2.y - m2 * b2.x;
        result.x = a1.x;
        result.y = y;
        return true;
    }
    const float m1 = (a2.y - a1.y) / (a2.x - a1.x);
    const float k1 = a2.y - a2.x * m1;
    if (bIsVertical) {
        result.x = b1.x;
        result.y = k1 + m1 * b1.x;
        return true;
    }
    const float m2 = (b2.y - b1.y) / (b2.x - b1.x);
    const float k2 = b2.y - b2.x * m2;
    if (m1 == m2) return false;
    const float x = (k2 - k1) / (m1 - m2);
    result.x = x;
    // The line of smaller slope gives y: it loses less to the rounding of x (for slopes above 0).
    result.y = m1 >= m2 ? x * m2 + k2 : x * m1 + k1;
    return true;
}

}  // namespace Lume
