#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "geometry/azimuth.h"
#include "geometry/cartesian_vector.h"
#include "geometry/spherical_vector.h"

namespace {

using Lume::CartesianVector;
using Lume::SphericalVector;

// Red if sine and cosine, azimuth and elevation, or two axes change places.
TEST(Vectors, DirectionsHaveTheirSigns) {
    const float halfPi = 1.5707964f;
    const struct {
        SphericalVector spherical;
        CartesianVector cartesian;
    } cases[] = {
        {{0.0f, 2.0f, 0.0f}, {2.0f, 0.0f, 0.0f}},      // right
        {{halfPi, 2.0f, 0.0f}, {0.0f, 2.0f, 0.0f}},    // ahead
        {{-halfPi, 2.0f, 0.0f}, {0.0f, -2.0f, 0.0f}},  // behind
        {{halfPi, 2.0f, halfPi / 3}, {0.0f, std::sqrt(3.0f), 1.0f}},
        {{0.0f, 2.0f, -halfPi / 3}, {std::sqrt(3.0f), 0.0f, -1.0f}},
    };
    for (auto const& c : cases) {
        CartesianVector cartesian;
        cartesian = c.spherical;
        EXPECT_NEAR(cartesian.x, c.cartesian.x, 1e-6f);
        EXPECT_NEAR(cartesian.y, c.cartesian.y, 1e-6f);
        EXPECT_NEAR(cartesian.z, c.cartesian.z, 1e-6f);
        SphericalVector spherical;
        spherical = c.cartesian;
        EXPECT_NEAR(spherical.azimuth, c.spherical.azimuth, 1e-6f);
        EXPECT_NEAR(spherical.distance, c.spherical.distance, 1e-6f);
        EXPECT_NEAR(spherical.elevation, c.spherical.elevation, 1e-6f);
        EXPECT_NEAR(c.cartesian.radius(), 2.0f, 1e-6f);
    }
}

// Red if it doesn't compile, as three numbers could be either kind of vector; or if the division by the distance isn't
// guarded at the origin.
TEST(Vectors, TakeNumbersInBracesAndTheOriginHasADirection) {
    CartesianVector cartesian;
    cartesian = {1.0f, 2.0f, 3.0f};
    EXPECT_EQ(cartesian.z, 3.0f);
    SphericalVector spherical;
    spherical = {0.5f, 2.0f, -0.5f};
    EXPECT_EQ(spherical.distance, 2.0f);
    spherical = CartesianVector{};
    EXPECT_TRUE(spherical.azimuth == 0.0f && spherical.distance == 0.0f && spherical.elevation == 0.0f);
}

TEST(Azimuth, SwapsConventionsBothWays) {
    using Lume::SwapAzimuthConvention;
    EXPECT_EQ(SwapAzimuthConvention(90.0f), 0.0f);      // ahead
    EXPECT_EQ(SwapAzimuthConvention(0.0f), 90.0f);      // right
    EXPECT_EQ(SwapAzimuthConvention(180.0f), -90.0f);   // left
    EXPECT_EQ(SwapAzimuthConvention(-90.0f), -180.0f);  // straight behind is never +180
    for (float degrees = -180.0f; degrees < 180.0f; degrees += 7.5f)
        EXPECT_EQ(SwapAzimuthConvention(SwapAzimuthConvention(degrees)), degrees);
}

// Red if subtraction comes before addition (a rounding lands on the period), or if a loop may run for ever.
TEST(Azimuth, WrapStaysBelowThePeriodAndEnds) {
    using Lume::Wrap;
    EXPECT_EQ(Wrap(-1e-6f, 360.0f), 0.0f);
    EXPECT_EQ(Wrap(-360.0f, 360.0f), 0.0f);
    EXPECT_EQ(Wrap(360.0f, 360.0f), 0.0f);
    EXPECT_EQ(Wrap(1085.0f, 360.0f), 5.0f);
    EXPECT_EQ(Wrap(-715.0f, 360.0f), 5.0f);
    EXPECT_EQ(Wrap(std::numeric_limits<float>::infinity(), 360.0f), 0.0f);
    EXPECT_EQ(Wrap(-3e38f, 360.0f), 0.0f);
    EXPECT_TRUE(std::isnan(Wrap(std::nanf(""), 360.0f)));
}

}  // namespace
