#pragma once

#include <cstdint>
#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Convex hull of points in the horizontal plane, by Graham's scan (Graham, "An efficient algorithm for determining the
/// convex hull of a finite planar set", Inf. Proc. Letters 1, 1972; the form with marks is that of O'Rourke,
/// "Computational geometry in C", 1998).
class ConvexHull2D {
public:
    /// A point at work in the scan.
    struct Point2D {
        float x = 0.0f;
        float y = 0.0f;
        float z = 0.0f;         // always 0, whatever the input has
        unsigned int vnum = 0;  // the point's number, from 1
        bool deleted = false;   // set by the comparison: the point can't be a vertex
        float pivotX = 0.0f;    // the pivot's coordinates stand in each point, since the
        float pivotY = 0.0f;    // comparison function sees nothing but two points
    };

    ConvexHull2D() = default;
    explicit ConvexHull2D(std::vector<CartesianVector> const& newPoints);
    ConvexHull2D(CartesianVector const* newPoints, unsigned int n);

    /// Takes over the points and computes their hull.
    void SetPoints(CartesianVector const* newPoints, unsigned int n);
    void SetPoints(std::vector<CartesianVector> const& newPoints);

    /// Copies the hull: its vertices in clockwise order, z 0, the lowest one (the rightmost of those) last. Fewer than
    /// two points are their own hull.
    void GetHullVertex(std::vector<CartesianVector>& vertices) const { vertices = hull; }

    /// Whether point i has exactly the x and y of a vertex.
    bool IsHullVertex(unsigned int i) const;

    /// Whether a point lies inside the hull or on its edge. An empty hull contains everything.
    bool Contains(CartesianVector const& p) const;

    /// Orders two Point2D by their angle about the pivot, counter-clockwise, in the form that qsort wants. Of points in
    /// one direction it also marks the nearer one as deleted, of points in one place one of them.
    static int ComparePoint2D(void const* a, void const* b);

    /// Scans the first n sorted points. Points in one place don't stop it: with one entry left on its stack the next
    /// point is pushed.
    /// @param result  becomes the hull, last vertex first
    static void graham(std::vector<Point2D> const& sorted, std::vector<CartesianVector>& result, unsigned int n);

private:
    void update();

    std::vector<CartesianVector> points;
    std::uint32_t numPoints = 0;
    std::vector<CartesianVector> hull;
    std::vector<Point2D> work;
};

/// The hull of n points in one call.
void ComputeConvexHull2D(CartesianVector const* points, unsigned int n, std::vector<CartesianVector>& hull);

}  // namespace Lume
