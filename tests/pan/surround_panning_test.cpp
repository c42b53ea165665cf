#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "geometry/speakers.h"
#include "pan/amplitude/angular_panning.h"
#include "pan/panning_support.h"
#include "pan/surround/panr.h"
#include "pan/surround/recursive_panning.h"
#include "pan/surround/surround_panning.h"

namespace {

using Lume::CartesianVector;

/// Rings in the order of outputs that the recursive laws expect: clockwise, with loudspeakers 0 (or 0 and 11) front
/// left.
std::vector<CartesianVector> Ring(std::vector<double> const& azimuths) {
    std::vector<CartesianVector> ring;
    ring.reserve(azimuths.size());
    for (const double azimuth : azimuths) ring.push_back(At(azimuth));
    return ring;
}

const std::vector<std::vector<double>> recursiveRings = {
    {-40, 50, 120, -130},
    {-30, 0, 30, 110, -110},
    {-45, 45, 90, 135, -135, -90},
    {-45, 0, 45, 90, 135, -135, -90},
    {-45, 0, 45, 90, 135, 180, -135, -90},
    {-30, 0, 30, 60, 90, 120, 150, 180, -150, -120, -90, -60},
};

// Ground truth: constant power everywhere, and at the azimuth of a corner loudspeaker 1 m away it sounds alone. With 12
// loudspeakers the corners lie between two.
TEST(RecursivePanning, PowerIsOneAndCornersSoundAlone) {
    Uniform uniform(3);
    const unsigned int corners[][4] = {{0, 1, 2, 3}, {0, 2, 3, 4}, {0, 1, 3, 4}, {0, 2, 4, 5}, {0, 2, 4, 6}};
    for (std::size_t i = 0; i < recursiveRings.size(); ++i) {
        const std::vector<CartesianVector> ring = Ring(recursiveRings[i]);
        Lume::RecursivePanning panner(1, static_cast<unsigned int>(ring.size()));
        panner.SetLoudspeakerPositions(ring.data());
        for (int k = 0; k < 500; ++k) {
            const std::vector<float> gains =
                GainsAt(panner, At(uniform(-180, 180), uniform(-90, 90), uniform(0, k < 100 ? 1 : 30)));
            EXPECT_NEAR(Power(gains), 1.0, 1e-5) << ring.size();
            EXPECT_GE(*std::min_element(gains.begin(), gains.end()), 0.0f);
        }
        for (int c = 0; c < 4 && i < 5; ++c)
            EXPECT_NEAR(GainsAt(panner, ring[corners[i][c]])[corners[i][c]], 1.0f, 1e-4f) << ring.size();
    }
}

// Red if an output of a law is another's. Each law is asked for the middles of the square's sides and for its corners:
// the loudspeaker that stands there, or the two on either side, get the power.
TEST(RecursiveLaws, LoudspeakersStandOnTheSquare) {
    struct Case {
        void (*law)(float, float, float*);
        unsigned int count;
        std::vector<std::vector<unsigned int>> at;  // front left, front, front right, right, ... clockwise
    };
    const Case cases[] = {
        {Lume::panr4, 4, {{0}, {0, 1}, {1}, {1, 2}, {2}, {2, 3}, {3}, {3, 0}}},
        {Lume::panr5, 5, {{0}, {1}, {2}, {2, 3}, {3}, {3, 4}, {4}, {4, 0}}},
        {Lume::panr6, 6, {{0}, {0, 1}, {1}, {2}, {3}, {3, 4}, {4}, {5}}},
        {Lume::panr7, 7, {{0}, {1}, {2}, {3}, {4}, {4, 5}, {5}, {6}}},
        {Lume::panr8, 8, {{0}, {1}, {2}, {3}, {4}, {5}, {6}, {7}}},
    };
    const float points[8][2] = {{-1, 1}, {0, 1}, {1, 1}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}};
    for (Case const& c : cases) {
        for (std::size_t p = 0; p < 8; ++p) {
            std::vector<float> powers(c.count), expected(c.count, 0.0f);
            c.law(points[p][0], points[p][1], powers.data());
            for (const unsigned int j : c.at[p]) expected[j] = 1.0f / static_cast<float>(c.at[p].size());
            EXPECT_EQ(powers, expected) << c.count << " loudspeakers, point " << p;
        }
    }
    // Twelve have two more loudspeakers in front and two more behind, halfway between corner and middle.
    const float twelve[12][2] = {{-1, 1}, {-0.5, 1}, {0, 1},  {0.5, 1},   {1, 1},   {1, 0},
                                 {1, -1}, {0.5, -1}, {0, -1}, {-0.5, -1}, {-1, -1}, {-1, 0}};
    for (std::size_t j = 0; j < 12; ++j) {
        std::vector<float> powers(12), expected(12, 0.0f);
        Lume::panr12(twelve[j][0], twelve[j][1], powers.data());
        expected[j] = 1.0f;
        EXPECT_EQ(powers, expected) << "point " << j;
    }
}

// Red if the corners' azimuths miss the square's corners, if a source behind the pole doesn't turn round, or if
// nearness doesn't draw to the centre.
TEST(Panc, MapsDirectionsOnTheSquare) {
    const float corners[] = {-30.0f, 45.0f, 120.0f, -110.0f};
    const float square[4][2] = {{-1, 1}, {1, 1}, {1, -1}, {-1, -1}};
    for (int i = 0; i < 4; ++i) {
        float x, y;
        Lume::panc(corners[i] + 720.0f, 0.0f, 9.0f, corners, x, y);
        EXPECT_NEAR(x, square[i][0], 1e-4f);
        EXPECT_NEAR(y, square[i][1], 1e-4f);
        Lume::panc(corners[i], 60.0f, 1.0f, corners, x, y);
        EXPECT_NEAR(x, 0.5f * square[i][0], 1e-4f);
        // At half a metre the source is at 60 degrees already: another 60 carry it over the pole.
        const float regular[] = {-45.0f, 45.0f, 135.0f, -135.0f};
        Lume::panc(regular[i], 60.0f, 0.5f, regular, x, y);
        EXPECT_NEAR(x, -0.5f * square[i][0], 1e-4f);
        EXPECT_NEAR(y, -0.5f * square[i][1], 1e-4f);
        Lume::panc(regular[i], 0.0f, 0.0f, regular, x, y);
        EXPECT_NEAR(x, 0.0f, 1e-6f);
    }
}

// Red if left and right come from other loudspeakers, if the rear goes elsewhere than to the surround, or if sources
// aren't placed from the start.
TEST(SurroundPanning, FrontAndSurround) {
    for (const unsigned int outputs : {3u, 4u}) {
        Lume::SurroundPanning panner(1, outputs);
        std::vector<float> placed(outputs);
        panner.GetGains(placed.data());
        EXPECT_NEAR(Power(placed), 1.0, 1e-5);
        const std::vector<CartesianVector> ring = outputs == 3 ? Ring({-40, 50, 180}) : Ring({-40, 5, 50, 180});
        panner.SetLoudspeakerPositions(ring.data());
        EXPECT_NEAR(GainsAt(panner, At(-40))[0], 1.0f, 1e-4f);
        EXPECT_NEAR(GainsAt(panner, At(50))[outputs - 2], 1.0f, 1e-4f);
        EXPECT_NEAR(GainsAt(panner, At(180))[outputs - 1], 1.0f, 1e-4f);
        const std::vector<float> ahead = GainsAt(panner, At(5));
        EXPECT_NEAR(ahead[1], outputs == 3 ? std::sqrt(0.5f) : 1.0f, 1e-4f);
        for (double azimuth = -180.0; azimuth < 180.0; azimuth += 10.0)
            EXPECT_NEAR(Power(GainsAt(panner, At(azimuth, 30, 0.7))), 1.0, 1e-5);
    }
}

// Ground truth: in every gap of any ring cosine and sine of the source's place in it, and the ring closes.
TEST(AngularPanning, SharesEachGapByCosineAndSine) {
    const std::vector<double> azimuths = {100, -20, 30, -170, 170};  // sorted counter-clockwise: 170 100 30 -20 -170
    const std::vector<CartesianVector> ring = Ring(azimuths);
    Lume::AngularPanning panner(1, 5);
    panner.SetLoudspeakerPositions(ring.data());
    const unsigned int order[] = {4, 0, 2, 1, 3};
    for (unsigned int i = 0; i < 5; ++i) {
        std::vector<float> alone(5, 0.0f);
        alone[i] = 1.0f;
        EXPECT_EQ(GainsAt(panner, ring[i]), alone);
        const unsigned int prev = order[i], next = order[(i + 1) % 5];
        const double gap = std::fmod(azimuths[prev] - azimuths[next] + 360.0, 360.0);
        for (const double place : {0.001, 0.25, 0.5, 0.9}) {
            const std::vector<float> gains = GainsAt(panner, At(azimuths[prev] - place * gap, 40, 5));
            EXPECT_NEAR(gains[prev], std::cos(place * std::numbers::pi / 2), 1e-5);
            EXPECT_NEAR(gains[next], std::sin(place * std::numbers::pi / 2), 1e-5);
            EXPECT_NEAR(Power(gains), 1.0, 1e-5);
        }
    }
    Lume::AngularPanning mono(1, 1);
    EXPECT_EQ(GainsAt(mono, At(77))[0], 1.0f);
}

}  // namespace
