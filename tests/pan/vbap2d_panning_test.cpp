#include "pan/amplitude/vbap2d_panning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "pan/panning_support.h"

namespace {

using Lume::CartesianVector;
using Lume::Vbap2DPanning;

// Ground truth: power 1, only two loudspeakers at work, and their vectors weighted by the gains point at the source.
// On rings of random order, angles (no gap over 180 degrees), distances and heights, for sources all around.
TEST(Vbap2DPanning, VelocityVectorPointsAtTheSourceOnIrregularRings) {
    Uniform uniform(20);
    for (const unsigned int outputs : {3u, 4u, 5u, 7u, 24u, 64u}) {
        std::vector<CartesianVector> ring(outputs);
        for (unsigned int i = 0; i < outputs; ++i)
            ring[i] = At(360.0 / outputs * (i + uniform(-0.24, 0.24)), uniform(-40.0, 40.0), uniform(0.5, 4.0));
        std::shuffle(ring.begin(), ring.end(), uniform.Generator());
        Vbap2DPanning panner(1, outputs);
        panner.SetLoudspeakerPositions(ring.data());
        for (int step = 0; step < 1000; ++step) {
            const double degrees = uniform(-720.0, 720.0);
            const std::vector<float> gains = GainsAt(panner, At(degrees, 20.0, uniform(0.1, 50.0)));
            double x = 0.0, y = 0.0;
            for (unsigned int i = 0; i < outputs; ++i) {
                EXPECT_GE(gains[i], 0.0f);
                x += static_cast<double>(gains[i]) * static_cast<double>(ring[i].x);
                y += static_cast<double>(gains[i]) * static_cast<double>(ring[i].y);
            }
            EXPECT_NEAR(Power(gains), 1.0, 1e-5);
            EXPECT_LE(std::count_if(gains.begin(), gains.end(), [](float g) { return g != 0.0f; }), 2);
            EXPECT_NEAR(std::remainder(std::atan2(x, y) * 180.0 / std::numbers::pi - degrees, 360.0), 0.0, 0.01)
                << outputs << " loudspeakers, source at " << degrees;
        }
    }
}

// Red if outputs follow the sorted order, if a pair's ends are excluded, or if the ring doesn't close behind.
TEST(Vbap2DPanning, FourInASquare) {
    const CartesianVector square[] = {At(-45), At(45), At(135), At(-135)};
    Vbap2DPanning panner(1, 4);
    panner.SetLoudspeakerPositions(square);
    const std::vector<float> behind = GainsAt(panner, {0.0f, -1.0f, 0.0f});
    EXPECT_NEAR(behind[2], std::sqrt(0.5f), 1e-6f);
    EXPECT_NEAR(behind[3], std::sqrt(0.5f), 1e-6f);
    for (unsigned int i = 0; i < 4; ++i) {
        const std::vector<float> gains = GainsAt(panner, square[i]);
        for (unsigned int j = 0; j < 4; ++j) EXPECT_NEAR(gains[j], i == j ? 1.0f : 0.0f, 1e-6f);
    }
    // By azimuth the order is 3, 0, 1, 2. A source on a loudspeaker belongs to the pair that ends there.
    EXPECT_EQ(panner.find_pair(square[3].x, square[3].y), 0u);
    EXPECT_EQ(panner.find_pair(square[1].x, square[1].y), 1u);
    // Straight up there is no azimuth: silence, and nothing that isn't a number. So is the middle of a wide gap.
    EXPECT_EQ(GainsAt(panner, {0.0f, 0.0f, 2.0f}), std::vector<float>(4, 0.0f));
    const CartesianVector pair[] = {At(-30), At(30)};
    Vbap2DPanning wide(1, 2);
    wide.SetLoudspeakerPositions(pair);
    EXPECT_EQ(GainsAt(wide, {0.0f, -1.0f, 0.0f}), (std::vector<float>{0.0f, 0.0f}));
    EXPECT_EQ(GainsAt(wide, {1.0f, 0.0f, 0.0f}), (std::vector<float>{0.0f, 1.0f}));
}

// The two searches agree wherever a pair encloses the source, apart from the places of loudspeakers themselves.
TEST(Vbap2DPanning, BothSearchesFindTheEnclosingPair) {
    std::vector<CartesianVector> ring;
    for (const double degrees : {-100.0, -31.0, 0.0, 44.0, 170.0}) ring.push_back(At(degrees));
    Vbap2DPanning panner(1, 5);
    panner.SetLoudspeakerPositions(ring.data());
    for (double degrees = -179.5; degrees < 180.0; degrees += 1.0) {
        const CartesianVector source = At(degrees);
        EXPECT_EQ(panner.find_pair(source.x, source.y), panner.find_pair_old(source.x, source.y)) << degrees;
    }
}

// Red if new loudspeakers leave the sources where they were, or if gains exist before any position.
TEST(Vbap2DPanning, NewLoudspeakersPlaceTheSourcesAgain) {
    Vbap2DPanning panner(2, 3);
    std::vector<float> gains(6, 9.0f);
    panner.GetGains(gains.data());
    EXPECT_EQ(gains, std::vector<float>(6, 0.0f));

    const CartesianVector sources[] = {At(0), At(120)};
    panner.SetSourcePositions(sources);
    const CartesianVector ring[] = {At(0), At(120), At(-120)};
    panner.SetLoudspeakerPositions(ring);
    panner.GetGains(gains.data());
    EXPECT_NEAR(gains[0], 1.0f, 1e-6f);
    EXPECT_NEAR(gains[3 + 1], 1.0f, 1e-6f);
}

}  // namespace
