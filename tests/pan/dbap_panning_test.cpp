#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <vector>

#include "pan/amplitude/dbap_panning_2d.h"
#include "pan/amplitude/dbap_panning_3d.h"
#include "pan/amplitude/vdbap_panning.h"
#include "pan/panning_support.h"

namespace {

using Lume::CartesianVector;
using Lume::DbapPanning;
using Lume::DbapPanning2D;
using Lume::DbapPanning3D;

// Ground truth: power 1 everywhere, also on top of loudspeakers and with two of them in one place, and gains in inverse
// proportion to the distance to each loudspeaker.
TEST(DbapPanning, PowerIsOneAndGainsFallWithDistance) {
    Uniform uniform(9);
    for (const unsigned int outputs : {1u, 2u, 5u, 24u, 64u}) {
        std::vector<CartesianVector> positions(outputs);
        for (auto& p : positions) p = At(uniform(-180, 180), uniform(-80, 80), uniform(0.2, 6.0));
        if (outputs > 2) positions[1] = positions[0];
        DbapPanning3D panner(1, outputs);
        panner.SetLoudspeakerPositions(positions.data());
        for (int i = 0; i < 300; ++i) {
            const CartesianVector source = i < 20 ? positions[static_cast<unsigned int>(i) % outputs]
                                                  : At(uniform(-180, 180), uniform(-90, 90), uniform(0.0, 1000.0));
            const std::vector<float> gains = GainsAt(panner, source);
            EXPECT_NEAR(Power(gains), 1.0, 1e-5);
            const auto distance = [&](CartesianVector const& p) {
                return CartesianVector{source.x - p.x, source.y - p.y, source.z - p.z}.radius();
            };
            for (unsigned int j = 0; i >= 20 && j < outputs; ++j)
                EXPECT_NEAR(gains[j] * distance(positions[j]), gains[0] * distance(positions[0]),
                            1e-5f * distance(positions[0]));
        }
    }
}

// Red if a spread is no fraction of 1, isn't limited, or reaches the wrong source or axis.
TEST(DbapPanning, SpreadWidensOneSource) {
    const std::vector<CartesianVector> corners = {{1, 1, 1}, {-1, 1, 1}, {1, -1, 1}, {1, 1, -1}};
    DbapPanning3D panner(2, 4);
    panner.SetLoudspeakerPositions(corners.data());
    const CartesianVector source = {1, 1, 1};
    const CartesianVector sources[] = {source, source};
    panner.SetSourcePositions(sources);
    panner.SetOmniSpreadFactor(1, 150.0f);
    panner.SetOmniSpreadFactor(0, -20.0f);
    std::vector<float> gains(8);
    panner.GetGains(gains.data());
    EXPECT_NEAR(gains[0], 1.0f, 1e-4f);
    EXPECT_NEAR(gains[1], 0.0f, 1e-4f);
    for (unsigned int j = 4; j < 8; ++j) EXPECT_NEAR(gains[j], 0.5f, 1e-5f);
    panner.SetOmniSpreadFactor(100.0f);
    EXPECT_NEAR(GainsAt(panner, source)[3], 0.5f, 1e-5f);

    // Spread along one axis: the loudspeaker that lies apart along this axis only joins in.
    panner.SetSpreadMode("xyz");
    EXPECT_STREQ(DbapPanning::GetSpreadModeName(panner.GetCurrentSpreadMode()), "directional");
    for (unsigned int axis = 0; axis < 3; ++axis) {
        float percents[3] = {};
        percents[axis] = 300.0f;
        panner.SetDirectionalSpreadFactor(percents);
        const std::vector<float> wide = GainsAt(panner, source);
        for (unsigned int j = 1; j < 4; ++j) EXPECT_NEAR(wide[j], j == axis + 1 ? std::sqrt(0.5f) : 0.0f, 1e-4f);
    }
    panner.SetSpreadMode("nonsense");
    EXPECT_EQ(panner.GetCurrentSpreadMode(), DbapPanning::omni);
    EXPECT_STREQ(DbapPanning::GetSpreadModeName(static_cast<DbapPanning::SpreadingMode>(5)), "");
}

// Red if the fade starts inside or on the edge of the hull, has another law, or if heights matter in the plane.
TEST(DbapPanning2D, SourcesFadeOutsideTheHull) {
    const std::vector<CartesianVector> square = {{-1, 1, 0}, {1, 1, 0}, {1, -1, 0}, {-1, -1, 0}};
    DbapPanning2D panner(1, 4);
    panner.SetLoudspeakerPositions(square.data());
    EXPECT_NEAR(Power(GainsAt(panner, {0.3f, -0.9f, 0.0f})), 1.0, 1e-5);
    EXPECT_NEAR(Power(GainsAt(panner, {0.25f, 1.0f, 0.0f})), 1.0, 1e-5);
    EXPECT_NEAR(Power(GainsAt(panner, {0.3f, -0.9f, 7.0f})), 1.0, 1e-5);
    EXPECT_EQ(GainsAt(panner, {0.3f, -0.9f, 7.0f}), GainsAt(panner, {0.3f, -0.9f, 0.0f}));
    const double fade = (std::sqrt(2.0) + 1.0) / (5.0 + 1.0);
    EXPECT_NEAR(Power(GainsAt(panner, {3.0f, 4.0f, 0.0f})), fade * fade, 1e-5);

    CartesianVector edge;
    panner.computeProjectionOnSpeakerHull({3.0f, 1.5f, 0.0f}, edge);
    EXPECT_NEAR(edge.x, 1.0f, 1e-5f);
    EXPECT_NEAR(edge.y, 0.5f, 1e-5f);

    panner.MuteSourceOutsideSpeakersHull(true);
    EXPECT_EQ(Power(GainsAt(panner, {3.0f, 4.0f, 0.0f})), 0.0);
    EXPECT_NEAR(Power(GainsAt(panner, {0.25f, 1.0f, 0.0f})), 1.0, 1e-5);
}

// The border of silence lies at the square root of the radius: the squared distance meets the plain radius.
TEST(DbapPanning3D, MutesBeyondTheSquareRootOfTheRadius) {
    const std::vector<CartesianVector> octahedron = {{4, 0, 0},  {-4, 0, 0}, {0, 4, 0},
                                                     {0, -4, 0}, {0, 0, 4},  {0, 0, -4}};
    DbapPanning3D panner(1, 6);
    panner.SetLoudspeakerPositions(octahedron.data());
    EXPECT_NEAR(Power(GainsAt(panner, {0.0f, 9.0f, 0.0f})), 1.0, 1e-5);
    panner.MuteSourceOutsideSpeakersHull(true);
    EXPECT_NEAR(Power(GainsAt(panner, {0.0f, 1.99f, 0.0f})), 1.0, 1e-5);
    EXPECT_EQ(Power(GainsAt(panner, {0.0f, 2.01f, 0.0f})), 0.0);
}

// Red if the ends of the fade move, if it isn't straight, or if a source's row is another's.
TEST(VDbapPanning, FadesFromDistanceToDirectionAcrossTheRadius) {
    const std::vector<CartesianVector> octahedron = {{2, 0, 0},  {-2, 0, 0}, {0, 2, 0},
                                                     {0, -2, 0}, {0, 0, 2},  {0, 0, -2}};
    Lume::VDbapPanning mixed(2, 6);
    DbapPanning3D near(1, 6);
    Lume::VbapPanning far(1, 6);
    for (Lume::Pan* panner : std::initializer_list<Lume::Pan*>{&mixed, &near, &far})
        panner->SetLoudspeakerPositions(octahedron.data());
    const double weights[][2] = {{0.3, 0.0}, {0.7, 0.0}, {0.85, 0.25}, {1.0, 0.5}, {1.3, 1.0}, {5.0, 1.0}};
    for (auto const& [distance, vbapWeight] : weights) {
        const CartesianVector sources[] = {At(-80, -40, 1.3), At(30, 20, 2.0 * distance)};
        mixed.SetSourcePositions(sources);
        std::vector<float> gains(12);
        mixed.GetGains(gains.data());
        const std::vector<float> dbap = GainsAt(near, sources[1]), vbap = GainsAt(far, sources[1]);
        for (std::size_t j = 0; j < 6; ++j) {
            const auto weight = static_cast<float>(vbapWeight);
            EXPECT_NEAR(gains[6 + j], weight * vbap[j] + (1.0f - weight) * dbap[j], 1e-5f) << distance;
        }
    }
}

}  // namespace
