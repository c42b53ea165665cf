#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "pan/panning_support.h"
#include "pan/stereo/stereo_ab_panning.h"
#include "pan/stereo/stereo_ms_panning.h"
#include "pan/stereo/stereo_pair_panning.h"
#include "pan/stereo/stereo_xy_panning.h"

namespace {

using Lume::CartesianVector;
using Lume::StereoABPanning;

// Ground truth: cardioids at +-45 degrees for XY, and for MS a cardioid ahead and a figure of eight across; from 1 m
// on, and shrinking to equal shares at the centre and above it. Left and right mirror each other.
TEST(StereoPanning, CoincidentPairsAreMicrophones) {
    Lume::StereoXYPanning xy(1);
    Lume::StereoMSPanning ms(1);
    for (double azimuth = -180.0; azimuth < 180.0; azimuth += 7.5) {
        const double a = azimuth * std::numbers::pi / 180.0, fortyFive = std::numbers::pi / 4;
        for (const double distance : {0.0, 0.5, 1.0, 20.0}) {
            for (const double elevation : {0.0, 60.0}) {
                const CartesianVector source = At(azimuth, elevation, distance);
                const double q = std::min(1.0, distance * std::cos(elevation * std::numbers::pi / 180.0));
                // Each lobe is at its highest 45 degrees to its side.
                EXPECT_NEAR(GainsAt(xy, source)[0], 0.41421 * (1 + q * std::cos(a + fortyFive)), 1e-5);
                EXPECT_NEAR(GainsAt(xy, source)[1], 0.41421 * (1 + q * std::cos(a - fortyFive)), 1e-5);
                EXPECT_NEAR(GainsAt(ms, source)[0], 0.5 * (1 + q * std::cos(a)), 1e-5);
                EXPECT_NEAR(GainsAt(ms, source)[1], 0.5 * q * std::sin(a), 1e-5);
            }
        }
    }
    EXPECT_EQ(GainsAt(ms, {}), (std::vector<float>{0.5f, 0.0f}));
    Lume::StereoPairPanning pair(1, 2);  // which stands at 30 degrees until somebody places it
    EXPECT_NEAR(GainsAt(pair, At(30.0))[0], 0.0f, 1e-6f);
}

// Red if a side is taken for the other, a delay isn't in milliseconds, a jump slides, or a slide jumps.
TEST(StereoABPanning, SourceOnTheRightIsLateAndSoftOnTheLeft) {
    StereoABPanning panner(1);
    for (const float rate : {44100.0f, 96000.0f}) {
        panner.Configure(rate, 512, true);
        panner.SetSourcePosition(0, At(90, 0, 3), true);
        panner.Clear();
        const Arrivals response(panner);
        EXPECT_NEAR(response.sum[0], 0.44936 * (1 - std::sqrt(0.5)), 1e-4);
        EXPECT_NEAR(response.sum[1], 0.44936 * (1 + std::sqrt(0.5)), 1e-4);
        EXPECT_NEAR(response.delay[0], 0.00125 * static_cast<double>(rate), 0.1);
        EXPECT_NEAR(response.delay[1], 0.00075 * static_cast<double>(rate), 0.1);
    }
    panner.SetSourcePosition(0, At(-90, 0, 3), false);
    EXPECT_LT(Arrivals(panner).sum[0], 0.44936);
    for (int block = 0; block < 10; ++block) ImpulseResponses(panner);
    EXPECT_NEAR(Arrivals(panner).sum[0], 0.44936 * (1 + std::sqrt(0.5)), 1e-3);
}

}  // namespace
