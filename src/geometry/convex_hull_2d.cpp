#include "geometry/convex_hull_2d.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace Lume {

ConvexHull2D::ConvexHull2D(std::vector<CartesianVector> const& newPoints) {
    SetPoints(newPoints);
}

ConvexHull2D::ConvexHull2D(CartesianVector const* newPoints, unsigned int n) {
    SetPoints(newPoints, n);
}

void ConvexHull2D::SetPoints(CartesianVector const* newPoints, unsigned int n) {
    points.assign(newPoints, newPoints + n);
    numPoints = n;
    update();
}

void ConvexHull2D::SetPoints(std::vector<CartesianVector> const& newPoints) {
    SetPoints(newPoints.data(), static_cast<unsigned int>(newPoints.size()));
}

bool ConvexHull2D::IsHullVertex(unsigned int i) const {
    if (i >= numPoints) return false;
    return std::any_of(hull.begin(), hull.end(), [&point = points[i]](CartesianVector const& vertex) {
        return vertex.x == point.x && vertex.y == point.y;
    });
}

bool ConvexHull2D::Contains(CartesianVector const& p) const {
    for (std::size_t i = 0; i < hull.size(); ++i) {
        CartesianVector const& from = hull[i];
        CartesianVector const& to = hull[(i + 1) % hull.size()];
        if ((from.y - to.y) * (p.x - from.x) + (p.y - from.y) * (to.x - from.x) > 0.0f) return false;
    }
    return true;
}

int ConvexHull2D::ComparePoint2D(void const* first, void const* second) {
    // qsort hands out its elements as const; the marks are what they are compared for.
    auto& a = *static_cast<Point2D*>(const_cast<void*>(first));
    auto& b = *static_cast<Point2D*>(const_cast<void*>(second));
    const float px = a.pivotX;
    const float py = a.pivotY;
    const float area = (py - a.y) * (b.x - px) + (b.y - py) * (a.x - px);
    if (area > 0.0f) return -1;
    if (area < 0.0f) return 1;

    const float dx = std::fabs(a.x - px) - std::fabs(b.x - b.pivotX);
    const float dy = std::fabs(a.y - py) - std::fabs(b.y - b.pivotY);
    if (dx < 0.0f || dy < 0.0f) {
        a.deleted = true;
        return -1;
    }
    if (dx > 0.0f || dy > 0.0f) {
        b.deleted = true;
        return 1;
    }
    if (a.vnum > b.vnum)
        b.deleted = true;
    else
        a.deleted = true;
    return 0;
}

void ConvexHull2D::graham(std::vector<Point2D> const& sorted, std::vector<CartesianVector>& result, unsigned int n) {
    // The stack grows at the vector's end here, and is turned round at last.
    result.clear();
    const auto push = [&](Point2D const& p) { result.push_back({p.x, p.y, p.z}); };
    for (unsigned int i = 0; i < std::min(n, 2u); ++i) push(sorted[i]);
    for (unsigned int i = 2; i < n;) {
        Point2D const& p = sorted[i];
        if (result.size() >= 2) {
            CartesianVector const& t = result[result.size() - 1];
            CartesianVector const& s = result[result.size() - 2];
            const float area = (s.y - t.y) * (p.x - s.x) + (p.y - s.y) * (t.x - s.x);
            if (!(area > 0.0f)) {
                result.pop_back();
                continue;
            }
        }
        push(p);
        ++i;
    }
    std::reverse(result.begin(), result.end());
}

void ConvexHull2D::update() {
    work.resize(numPoints);
    hull.clear();
    if (numPoints < 2) {
        hull = points;
        return;
    }
    for (unsigned int i = 0; i < numPoints; ++i) {
        work[i] = Point2D{};
        work[i].x = points[i].x;
        work[i].y = points[i].y;
        work[i].vnum = i + 1;
    }
    const auto pivot = std::min_element(work.begin(), work.end(), [](Point2D const& a, Point2D const& b) {
        return a.y < b.y || (a.y == b.y && a.x > b.x);
    });
    std::swap(work.front(), *pivot);
    for (Point2D& point : work) {
        point.pivotX = work.front().x;
        point.pivotY = work.front().y;
    }
    // qsort, not std::sort: the comparison marks the elements that it is given, and these must not be copies.
    std::qsort(work.data() + 1, work.size() - 1, sizeof(Point2D), ComparePoint2D);
    work.erase(std::remove_if(work.begin(), work.end(), [](Point2D const& point) { return point.deleted; }),
               work.end());
    graham(work, hull, static_cast<unsigned int>(work.size()));
}

void ComputeConvexHull2D(CartesianVector const* points, unsigned int n, std::vector<CartesianVector>& hull) {
    ConvexHull2D(points, n).GetHullVertex(hull);
}

}  // namespace Lume
