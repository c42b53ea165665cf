#include "geometry/convex_hull_2d.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using Lume::CartesianVector;
using Lume::ConvexHull2D;
using Points = std::vector<CartesianVector>;

double Cross(CartesianVector const& a, CartesianVector const& b, CartesianVector const& p) {
    return (static_cast<double>(b.x) - static_cast<double>(a.x)) *
               (static_cast<double>(p.y) - static_cast<double>(a.y)) -
           (static_cast<double>(b.y) - static_cast<double>(a.y)) *
               (static_cast<double>(p.x) - static_cast<double>(a.x));
}

/// What makes a polygon the hull: its vertices are points of the set, it turns right at each of them, and no point lies
/// to the left of an edge.
void ExpectHull(Points const& points, Points const& hull) {
    ASSERT_GE(hull.size(), 3u);
    for (std::size_t i = 0; i < hull.size(); ++i) {
        CartesianVector const& a = hull[i];
        CartesianVector const& b = hull[(i + 1) % hull.size()];
        EXPECT_TRUE(std::any_of(points.begin(), points.end(), [&](auto& p) { return p.x == a.x && p.y == a.y; }));
        EXPECT_EQ(a.z, 0.0f);
        EXPECT_LT(Cross(a, b, hull[(i + 2) % hull.size()]), 0.0);
        for (auto const& p : points) EXPECT_LE(Cross(a, b, p), 0.0);
    }
}

// A coarse grid: many points share a place, a line or a height with others.
TEST(ConvexHull2D, EnclosesAllPointsWithItsCorners) {
    for (unsigned int seed = 0; seed < 200; ++seed) {
        std::mt19937 generator(seed);
        Points points(3 + generator() % 40);
        for (auto& p : points) {
            p.x = static_cast<float>(generator() % 9);
            p.y = static_cast<float>(generator() % 9);
            p.z = static_cast<float>(generator() % 9);
        }
        points.push_back({-1, 3, 0});  // never all on one line
        points.push_back({4, -1, 0});
        for (const float x : {2.0f, 0.0f, 1.0f}) points.push_back({x, -1, 0});
        points.push_back({10, 9, 0});
        Points vertices;
        Lume::ComputeConvexHull2D(points.data(), static_cast<unsigned int>(points.size()), vertices);
        SCOPED_TRACE(seed);
        ExpectHull(points, vertices);
        EXPECT_TRUE(vertices.back().x == 4.0f && vertices.back().y == -1.0f);  // the lowest, the rightmost of those

        const ConvexHull2D hull(points);
        for (unsigned int i = 0; i < points.size(); ++i) {
            EXPECT_TRUE(hull.Contains(points[i]));
            const bool isVertex = std::any_of(vertices.begin(), vertices.end(),
                                              [&](auto& v) { return v.x == points[i].x && v.y == points[i].y; });
            EXPECT_EQ(hull.IsHullVertex(i), isVertex);
        }
        EXPECT_FALSE(hull.Contains({11, 4, 0}));
        EXPECT_FALSE(hull.Contains({4, -1.01f, 0}));
    }
}

// Red if the scan looks below the last entry of its stack, or never ends.
TEST(ConvexHull2D, SurvivesPointsInOnePlaceOrOnOneLine) {
    Points vertices;
    for (unsigned int n = 0; n < 6; ++n) {
        const Points same(n, CartesianVector{1, 2, 3});
        ConvexHull2D hull(same);
        hull.GetHullVertex(vertices);
        EXPECT_EQ(vertices.size(), std::min(n, 2u)) << n;  // the pivot is never marked
        EXPECT_TRUE(hull.Contains({1, 2, 0}));
    }
    const Points line = {{0, 0, 0}, {3, 3, 0}, {1, 1, 0}, {2, 2, 0}};
    ConvexHull2D hull(line);
    hull.GetHullVertex(vertices);
    ASSERT_EQ(vertices.size(), 2u);
    EXPECT_EQ(vertices[0].x, 3.0f);
    EXPECT_FALSE(hull.IsHullVertex(2));

    std::vector<ConvexHull2D::Point2D> sorted(5);
    sorted[4].x = 1.0f;
    ConvexHull2D::graham(sorted, vertices, 5);
    EXPECT_EQ(vertices.front().x, 1.0f);
    EXPECT_TRUE(ConvexHull2D().Contains({9, 9, 9}));
}

}  // namespace
