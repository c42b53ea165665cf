#include "pan/ambisonic/hoa_panning.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "harmonics/ambisonic_encoding.h"
#include "pan/ambisonic/ambisonic_panning.h"
#include "pan/ambisonic/hoa2d_panning.h"
#include "pan/ambisonic/hoa3d_panning.h"
#include "pan/panning_support.h"

namespace {

using Lume::CartesianVector;
using Lume::HOA2DPanning;
using Lume::HOA3DPanning;
using Lume::HOAPanning;

/// A real harmonic of SN3D without the Condon-Shortley phase, by the standard library's Legendre functions, which have
/// none either.
double ClosedForm(unsigned int l, int m, double x, double y, double z) {
    const auto a = static_cast<unsigned int>(std::abs(m));
    const double scale = std::sqrt((m == 0 ? 1.0 : 2.0) * std::tgamma(l - a + 1.0) / std::tgamma(l + a + 1.0));
    const double turns = a * std::atan2(y, x);
    return scale * std::assoc_legendre(l, a, z) * (m < 0 ? std::sin(turns) : std::cos(turns));
}

// Red if a channel is misplaced, a sign or a scale wrong, in any convention and sorting, orders 1 to 7. Positions
// become single-precision angles: half an ulp of pi, seven times in the highest order, up to 45 degrees of elevation;
// towards the poles the arc sine loses half its digits. From angles in double there is no such loss.
TEST(HOAPanning, EncodingsAreTheClosedFormsOfTheHarmonics) {
    Uniform uniform(3);
    double worst = 0.0, worstNearPoles = 0.0;
    for (unsigned int order = 1; order <= 7; ++order)
        for (int trial = 0; trial < 50; ++trial) {
            const double azimuth = uniform(-180.0, 180.0), elevation = uniform(-90.0, 90.0);
            const CartesianVector p = At(azimuth, elevation, uniform(0.5, 20.0));
            const double x = static_cast<double>(p.x), y = static_cast<double>(p.y), z = static_cast<double>(p.z);
            const double r = std::hypot(x, y, z);
            const auto harmonic = [=](unsigned int l, int m) { return ClosedForm(l, m, x / r, y / r, z / r); };
            const auto check = [&](float gain, double expected, double size) {
                double& most = std::abs(elevation) < 45.0 ? worst : worstNearPoles;
                most = std::max(most, std::abs(static_cast<double>(gain) - expected) / size);
            };
            const std::vector<double> exact =
                Lume::AmbisonicEncodingVector(order, std::atan2(std::hypot(x, y), z), std::atan2(y, x),
                                              Lume::SchmidtSeminormalized3D, Lume::IncreasingDegrees);
            for (const auto convention : {HOAPanning::SN3D, HOAPanning::N3D}) {
                HOA3DPanning panner(1, (order + 1) * (order + 1));
                panner.SetEncodingConvention(convention);
                const std::vector<float> gains = GainsAt(panner, p);
                panner.SetSphericalHarmonicsSorting("alternatedegrees");
                const std::vector<float> alternate = GainsAt(panner, p);
                std::size_t channel = 0, first = 0;
                for (unsigned int l = 0; l <= order; first += 2 * l + 1, ++l)
                    for (int m = -static_cast<int>(l); m <= static_cast<int>(l); ++m, ++channel) {
                        const double size = convention == HOAPanning::N3D ? std::sqrt(2.0 * l + 1.0) : 1.0;
                        EXPECT_NEAR(exact[channel], harmonic(l, m), 1e-11) << l << ", " << m;
                        check(gains[channel], size * harmonic(l, m), size);
                        // The highest order first, positive before negative, 0 last.
                        const std::size_t other = 2 * (l - static_cast<unsigned int>(std::abs(m))) + (m < 0 ? 1 : 0);
                        check(alternate[first + other], size * harmonic(l, m), size);
                    }
            }
            for (const auto convention : {HOAPanning::SN2D, HOAPanning::N2D}) {
                HOA2DPanning panner(1, 2 * order + 1);
                panner.SetEncodingConvention(convention);
                const std::vector<float> gains = GainsAt(panner, p);
                panner.SetSphericalHarmonicsSorting(Lume::AlternateDegrees);
                const std::vector<float> alternate = GainsAt(panner, p);
                check(gains[0], std::numbers::sqrt2 / 2.0, 1.0);
                const double size = convention == HOAPanning::N2D ? std::numbers::sqrt2 : 1.0;
                const double c = std::hypot(x, y) / r, a = std::atan2(y, x);
                for (unsigned int l = 1; l <= order; ++l) {
                    const double sine = size * std::pow(c, l) * std::sin(l * a);
                    const double cosine = size * std::pow(c, l) * std::cos(l * a);
                    check(gains[2 * l - 1], sine, size);
                    check(gains[2 * l], cosine, size);
                    check(alternate[2 * l - 1], cosine, size);
                    check(alternate[2 * l], sine, size);
                }
            }
        }
    EXPECT_LT(worst, 1e-6);
    EXPECT_LT(worstNearPoles, 3e-4);
}

TEST(HOAPanning, ConventionsStayWithinTheirDimensionAndHaveTheirNames) {
    HOA3DPanning space(1, 4);
    space.SetEncodingConvention("fullnormalized3d");
    EXPECT_EQ(space.GetEncodingConvention(), HOAPanning::N3D);
    for (char const* other : {"N3D", "no such name"}) space.SetEncodingConvention(other);
    EXPECT_EQ(space.GetEncodingConvention(), HOAPanning::SN3D);
    space.SetEncodingConvention("N2D");
    EXPECT_EQ(space.GetEncodingConvention(), HOAPanning::SN3D);
    HOA2DPanning plane(1, 5);
    EXPECT_EQ(plane.GetEncodingConvention(), HOAPanning::SN2D);
    plane.SetEncodingConvention("N2d");
    EXPECT_EQ(plane.GetEncodingConvention(), HOAPanning::N2D);
    plane.SetEncodingConvention("no such name");
    EXPECT_EQ(plane.GetEncodingConvention(), HOAPanning::SN2D);

    HOAPanning::HOAPannerInfos infos;
    plane.SetSphericalHarmonicsSorting(static_cast<Lume::SphericalHarmonicsSorting>(2));
    plane.GetPannerInfos(infos);
    EXPECT_EQ(infos.order, 2u);
    EXPECT_EQ(infos.sorting, 2);
    EXPECT_EQ(GainsAt(plane, At(30.0)), std::vector<float>(5, 0.0f));
    EXPECT_STREQ(HOAPanning::GetSphericalHarmonicsSortingName(infos.sorting), "");
    EXPECT_STREQ(HOAPanning::GetHOAPannerConventionName(HOAPanning::N2D), "N2D");
    EXPECT_EQ(HOAPanning::GetSphericalHarmonicsSorting("Alternate"), Lume::IncreasingDegrees);
    // Without a direction a source is on the right, at ear height.
    space.SetSphericalHarmonicsSorting(Lume::IncreasingDegrees);
    const std::vector<float> origin = GainsAt(space, {});
    EXPECT_EQ(origin[3], 1.0f);
    EXPECT_NEAR(origin[2], 0.0f, 1e-7f);
}

// The same power for every direction, whatever the height, and the axes: X right, Y ahead, Z up.
TEST(AmbisonicPanning, PowerIsConstantAndTheAxesAreRight) {
    Uniform uniform(4);
    for (const unsigned int numOutputs : {3u, 4u}) {
        Lume::AmbisonicPanning panner(1, numOutputs);
        const double power = numOutputs == 3 ? 1.0 : 7.0 / 3.0;
        for (int trial = 0; trial < 100; ++trial)
            EXPECT_NEAR(Power(GainsAt(panner, At(uniform(-180.0, 180.0), uniform(-90.0, 90.0), 3.0))), power, 1e-6);
    }
    Lume::AmbisonicPanning space(1, 4), plane(1, 3);
    const std::vector<float> right = GainsAt(space, {1.0f, 0.0f, 0.0f});
    EXPECT_EQ(right, (std::vector<float>{0.57735026f, 1.4142135f, 0.0f, 0.0f}));
    EXPECT_NEAR(GainsAt(space, {0.0f, 2.0f, 0.0f})[2], 1.4142135f, 1e-6f);
    EXPECT_NEAR(GainsAt(plane, {0.0f, 0.0f, 1.0f})[0], 1.0f, 1e-6f);
}

}  // namespace
