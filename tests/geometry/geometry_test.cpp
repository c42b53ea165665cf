#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "geometry/plane_geometry.h"
#include "geometry/point_search.h"
#include "geometry/space_geometry.h"

namespace {

using Lume::CartesianVector;
using Points = std::vector<CartesianVector>;

Points RandomPoints(std::size_t count, unsigned int seed) {
    std::mt19937 generator(seed);
    const auto coordinate = [&] { return static_cast<float>(generator() % 20001) * 1e-3f - 10.0f; };
    Points points(count);
    for (auto& p : points) p = CartesianVector{coordinate(), coordinate(), coordinate()};
    return points;
}

// Ground truth: all distances, in double, sorted.
TEST(PointSearch, FindsTheNearest) {
    const Points points = RandomPoints(40, 1);
    for (CartesianVector const& p : RandomPoints(20, 2)) {
        const auto distance = [&](unsigned int i, bool inSpace) {
            return std::hypot(static_cast<double>(p.x) - static_cast<double>(points[i].x),
                              static_cast<double>(p.y) - static_cast<double>(points[i].y),
                              inSpace ? static_cast<double>(p.z) - static_cast<double>(points[i].z) : 0.0);
        };
        std::vector<unsigned int> order(points.size());
        std::iota(order.begin(), order.end(), 0u);
        std::sort(order.begin(), order.end(), [&](auto a, auto b) { return distance(a, true) < distance(b, true); });
        EXPECT_EQ(Lume::GetClosestPointIndex(p, points), order[0]);
        std::sort(order.begin(), order.end(), [&](auto a, auto b) { return distance(a, false) < distance(b, false); });
        EXPECT_EQ(Lume::GetClosestPointIndex2D(p, points), order[0]);
        order.resize(5);
        std::vector<unsigned int> nearest;
        Lume::GetNClosestPointIndex2D(p, points, nearest, 5);
        EXPECT_EQ(nearest, order);
    }
}

TEST(PointSearch, TiesAndFarPointsGiveTheFirst) {
    EXPECT_EQ(Lume::GetClosestPointIndex({}, {{2, 0, 0}, {1, 0, 0}, {0, 1, 0}}), 1u);
    EXPECT_EQ(Lume::GetClosestPointIndex({}, {{9000, 0, 0}, {4000, 0, 0}}), 0u);
    EXPECT_EQ(Lume::GetClosestPointIndex2D({}, {}), 0u);
}

TEST(SpaceGeometry, CentresAndRadii) {
    const Points points = {{1, 2, 3}, {3, 2, -1}, {2, -4, 4}};
    CartesianVector centre{9, 9, 9};
    Lume::ComputeBarycenter(points, centre);
    EXPECT_FLOAT_EQ(centre.x, 2.0f);
    EXPECT_FLOAT_EQ(centre.y, 0.0f);
    EXPECT_FLOAT_EQ(centre.z, 2.0f);
    EXPECT_FLOAT_EQ(Lume::GetRadiusOfTheLargestSphereEncompassing(points), 6.0f);
    EXPECT_FLOAT_EQ(Lume::GetRadiusOfTheLargestSphereEncompassing(points, {2, 2, 3}), std::sqrt(37.0f));
    Lume::ComputeBarycenter({}, centre);
    EXPECT_EQ(centre.radius(), 0.0f);
}

// Red if first and second change places, the centre is left out of a term, or a result that takes the place of an
// argument is read as one.
TEST(SpaceGeometry, LineMeetsSphere) {
    const CartesianVector centre{1, 2, 3};
    CartesianVector first{7, 7, 7}, second{7, 7, 7};
    EXPECT_FALSE(Lume::IntersectionBetweenLineAndSphere(centre, 2, {0, 5, 3}, {1, 5, 3}, first, second));
    EXPECT_EQ(first.x, 7.0f);
    ASSERT_TRUE(Lume::IntersectionBetweenLineAndSphere(centre, 2, {-5, 2, 3}, {-3, 2, 3}, first, second));
    EXPECT_FLOAT_EQ(first.x, 3.0f);
    EXPECT_FLOAT_EQ(second.x, -1.0f);
    EXPECT_FLOAT_EQ(second.z, 3.0f);
    ASSERT_TRUE(Lume::IntersectionBetweenLineAndSphere(centre, 2, {0, 4, 3}, {1, 4, 3}, first, second));
    EXPECT_FLOAT_EQ(first.x, 1.0f);
    EXPECT_FLOAT_EQ(second.x, 1.0f);

    CartesianVector from{-5, 2, 3}, to{-4, 2, 3};
    ASSERT_TRUE(Lume::IntersectionBetweenLineAndSphere(centre, 2, from, to, from, to));
    EXPECT_FLOAT_EQ(from.x, 3.0f);
    EXPECT_FLOAT_EQ(to.x, -1.0f);
}

// Red if a near loudspeaker is projected to the far side, or the delay belongs to another speed of sound.
TEST(SpaceGeometry, NearLoudspeakersAreDelayed) {
    const Points points = {{0, 1, 0}, {-3.4f, 0, 0}, {0, -1.02f, 1.36f}};
    float radius = 0.0f;
    Points projected;
    std::vector<float> delays(1, 5.0f);
    Lume::ComputeSpeakersTimeDelays(points, radius, projected, delays);
    EXPECT_FLOAT_EQ(radius, 3.4f);
    ASSERT_EQ(delays.size(), 3u);
    EXPECT_NEAR(delays[0], 2.4 / 0.34, 1e-5);
    EXPECT_NEAR(delays[1], 0.0, 1e-5);
    EXPECT_NEAR(delays[2], 1.7 / 0.34, 1e-5);
    EXPECT_NEAR(projected[1].x, -3.4, 1e-5);
    EXPECT_NEAR(projected[2].y, -2.04, 1e-5);
    EXPECT_NEAR(projected[2].z, 2.72, 1e-5);
    Points again;
    Lume::ComputeSpeakersProjectionOnSphere(points, radius, again);
    EXPECT_EQ(again[2].z, projected[2].z);
}

TEST(PlaneGeometry, SortsByMathematicalAzimuth) {
    Points points = RandomPoints(30, 3);
    points.push_back({1, 1, 1});
    points.push_back({2, 2, 2});  // same direction: stays behind
    Lume::SortByAscendingAzimuth(points);
    for (std::size_t i = 1; i < points.size(); ++i)
        EXPECT_LE(std::atan2(points[i - 1].y, points[i - 1].x), std::atan2(points[i].y, points[i].x));
    const auto first =
        std::find_if(points.begin(), points.end(), [](auto const& p) { return p.z == 1.0f && p.x == 1.0f; });
    ASSERT_NE(first, points.end());
    EXPECT_EQ((first + 1)->z, 2.0f);
}

TEST(PlaneGeometry, AreaIsSigned) {
    Points polygon;
    for (float angle = 0.0f; angle < 6.0f; angle += 0.8975979f)
        polygon.push_back({5 + std::cos(angle), std::sin(angle), 9});
    EXPECT_NEAR(Lume::AreaOf2DPolygon(polygon), 3.5 * std::sin(2 * 3.14159265 / 7), 1e-5);
    std::reverse(polygon.begin(), polygon.end());
    EXPECT_NEAR(Lume::AreaOf2DPolygon(polygon), -3.5 * std::sin(2 * 3.14159265 / 7), 1e-5);
    EXPECT_EQ(Lume::AreaOf2DPolygon({{0, 0, 0}, {1, 1, 0}}), 0.0f);
}

// A polygon that isn't convex, both ways round, against its description.
TEST(PlaneGeometry, InsideOfAnAngle) {
    Points polygon = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {3, 4, 0}, {3, 1, 0}, {0, 1, 0}};
    for (int way = 0; way < 2; ++way) {
        for (CartesianVector const& p : RandomPoints(500, 4)) {
            const bool inFoot = p.x > 0 && p.x < 4 && p.y > 0 && p.y < 1;
            const bool inLeg = p.x > 3 && p.x < 4 && p.y > 0 && p.y < 4;
            EXPECT_EQ(Lume::IsInside2DPolygon(p, polygon), inFoot || inLeg) << p.x << " " << p.y;
        }
        std::reverse(polygon.begin(), polygon.end());
    }
}

TEST(PlaneGeometry, LinesAndSegments) {
    using Lume::BelongsToLine2D;
    using Lume::BelongsToSegment2D;
    const CartesianVector a{1, 1, 0}, b{3, 5, 0}, above{1, 9, 0};
    EXPECT_TRUE(BelongsToLine2D(a, b, {2, 3, 7}));
    EXPECT_TRUE(BelongsToLine2D(a, b, {4, 7, 0}));
    EXPECT_FALSE(BelongsToLine2D(a, b, {2, 3.001f, 0}));
    EXPECT_TRUE(BelongsToLine2D(a, above, {1, -8, 0}));
    EXPECT_FALSE(BelongsToLine2D(a, above, {2, 2, 0}));
    EXPECT_TRUE(BelongsToSegment2D(b, a, {2, 3, 0}));
    EXPECT_TRUE(BelongsToSegment2D(a, b, b));
    EXPECT_FALSE(BelongsToSegment2D(a, b, {4, 7, 0}));
    EXPECT_FALSE(BelongsToSegment2D(a, above, {1, 10, 0}));
}

// Ground truth: the point found lies on both lines. Covers slopes of both orders, and verticals on either side.
TEST(PlaneGeometry, IntersectionLiesOnBothLines) {
    const Points points = RandomPoints(400, 5);
    const auto offset = [](CartesianVector const& from, CartesianVector const& to, CartesianVector const& p) {
        const double dx = static_cast<double>(to.x) - static_cast<double>(from.x),
                     dy = static_cast<double>(to.y) - static_cast<double>(from.y);
        return (dx * (static_cast<double>(p.y) - static_cast<double>(from.y)) -
                dy * (static_cast<double>(p.x) - static_cast<double>(from.x))) /
               std::hypot(dx, dy);
    };
    int checked = 0;
    for (std::size_t i = 0; i + 3 < points.size(); i += 4) {
        const CartesianVector a1 = points[i], b1 = points[i + 2];
        CartesianVector a2 = points[i + 1], b2 = points[i + 3];
        if (i % 3 == 1) a2.x = a1.x;
        if (i % 3 == 2) b2.x = b1.x;
        CartesianVector p{0, 0, 5};
        ASSERT_TRUE(Lume::Intersect2D(a1, a2, b1, b2, p));
        EXPECT_EQ(p.z, 5.0f);
        if (std::hypot(p.x, p.y) > 100.0f) continue;  // nearly parallel: the rounding grows
        EXPECT_NEAR(offset(a1, a2, p), 0.0, 1e-3) << i;
        EXPECT_NEAR(offset(b1, b2, p), 0.0, 1e-3) << i;
        ASSERT_TRUE(Lume::Intersect2D(a1, a2, b1, b2, b2));  // into an argument
        EXPECT_EQ(b2.y, p.y);
        ++checked;
    }
    EXPECT_GT(checked, 80);

    CartesianVector p{7, 7, 7};
    EXPECT_FALSE(Lume::Intersect2D({0, 0, 0}, {1, 2, 0}, {5, 0, 0}, {6, 2, 0}, p));
    EXPECT_FALSE(Lume::Intersect2D({0, 0, 0}, {0, 2, 0}, {5, 0, 0}, {5, 2, 0}, p));
    EXPECT_FALSE(Lume::Intersect2D({1, 1, 0}, {1, 1, 3}, {5, 0, 0}, {6, 2, 0}, p));
    EXPECT_EQ(p.x, 7.0f);
}

}  // namespace
