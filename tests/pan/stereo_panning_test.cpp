#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "pan/panning_support.h"
#include "pan/stereo_ab_panning.h"
#include "pan/stereo_ms_panning.h"
#include "pan/stereo_xy_panning.h"
#include "support/allocation_count.h"
#include "support/signals.h"

namespace {

using Lume::CartesianVector;
using Lume::StereoABPanning;

std::vector<float> Gains(Lume::AmplitudePanning& panner, CartesianVector const& source) {
    std::vector<float> gains(2, 9.0f);
    panner.convert(source, gains.data(), 0);
    return gains;
}

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
                EXPECT_NEAR(Gains(xy, source)[0], 0.41421 * (1 + q * std::cos(a + fortyFive)), 1e-5);
                EXPECT_NEAR(Gains(xy, source)[1], 0.41421 * (1 + q * std::cos(a - fortyFive)), 1e-5);
                EXPECT_NEAR(Gains(ms, source)[0], 0.5 * (1 + q * std::cos(a)), 1e-5);
                EXPECT_NEAR(Gains(ms, source)[1], 0.5 * q * std::sin(a), 1e-5);
            }
        }
    }
    EXPECT_EQ(Gains(ms, {}), (std::vector<float>{0.5f, 0.0f}));
}

/// Sums the impulse responses of the channels, and their centres of gravity [samples].
struct Response {
    double sum[2] = {};
    double delay[2] = {};
};
Response ResponseOf(Lume::Pan& panner) {
    std::vector<float> impulse = MakeImpulse(512), left(512), right(512);
    float* in[] = {impulse.data()};
    float* out[] = {left.data(), right.data()};
    panner.Process(out, in, 512, orvandsp::allActiveInputs);
    Response response;
    for (int c = 0; c < 2; ++c) {
        for (int k = 0; k < 512; ++k) {
            response.sum[c] += static_cast<double>(out[c][k]);
            response.delay[c] += k * static_cast<double>(out[c][k]);
        }
        response.delay[c] /= response.sum[c];
    }
    return response;
}

// Red if a side is taken for the other, a delay isn't in milliseconds, a jump slides, or a slide jumps.
TEST(StereoABPanning, SourceOnTheRightIsLateAndSoftOnTheLeft) {
    StereoABPanning panner(1);
    for (const float rate : {44100.0f, 96000.0f}) {
        panner.Configure(rate, 512, true);
        panner.SetSourcePosition(0, At(90, 0, 3), true);
        panner.Clear();
        const Response response = ResponseOf(panner);
        EXPECT_NEAR(response.sum[0], 0.44936 * (1 - std::sqrt(0.5)), 1e-4);
        EXPECT_NEAR(response.sum[1], 0.44936 * (1 + std::sqrt(0.5)), 1e-4);
        EXPECT_NEAR(response.delay[0], 0.00125 * static_cast<double>(rate), 0.1);
        EXPECT_NEAR(response.delay[1], 0.00075 * static_cast<double>(rate), 0.1);
    }
    panner.SetSourcePosition(0, At(-90, 0, 3), false);
    EXPECT_LT(ResponseOf(panner).sum[0], 0.44936);
    for (int block = 0; block < 10; ++block) ResponseOf(panner);
    EXPECT_NEAR(ResponseOf(panner).sum[0], 0.44936 * (1 + std::sqrt(0.5)), 1e-3);
}

// Red if an output is written before the inputs are read, if adding clears, if a lone silent source clears, or if a
// steady block size allocates.
TEST(StereoABPanning, WorksInPlaceAddsAndAllocatesNothing) {
    const std::vector<float> left = MakeNoise(1, 256), right = MakeNoise(2, 256);
    std::vector<Channels> runs(3, Channels(2, 256, 0.5f));
    for (int run = 0; run < 3; ++run) {
        StereoABPanning panner(2);
        panner.Configure(48000.0f, 256, true);
        panner.SetSourcePosition(0, At(-50), true);
        panner.SetSourcePosition(1, At(20), true);
        Channels in(2, 256, 0.0f);
        in.data[0] = left;
        in.data[1] = right;
        float* ins[] = {in.data[0].data(), in.data[1].data()};
        float* outs[] = {runs[static_cast<std::size_t>(run)].data[0].data(),
                         runs[static_cast<std::size_t>(run)].data[1].data()};
        const long before = AllocationCount();
        if (run == 0) panner.Process(outs, ins, 256, orvandsp::allActiveInputs);
        if (run == 1) panner.ProcessAdding(outs, ins, 256, orvandsp::allActiveInputs);
        if (run == 2) panner.Process(ins, ins, 256, orvandsp::allActiveInputs);
        EXPECT_EQ(AllocationCount(), before);
        if (run == 2) runs[2].data = in.data;
    }
    EXPECT_EQ(runs[0].data, runs[2].data);
    for (std::size_t k = 0; k < 256; ++k) EXPECT_NEAR(runs[1].data[1][k], runs[0].data[1][k] + 0.5f, 1e-6f);

    StereoABPanning lone(1);
    const short none[] = {0};
    float* outs[] = {runs[0].data[0].data(), runs[0].data[1].data()};
    lone.Process(outs, outs, 256, none);
    EXPECT_EQ(runs[0].data, runs[2].data);
}

}  // namespace
