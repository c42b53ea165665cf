#include "pan/amplitude/vbap_panning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "geometry/speakers.h"
#include "pan/panning_support.h"

namespace {

using Lume::CartesianVector;
using Lume::VbapPanning;
using Layout = Positions;

/// Loudspeakers on rings, each given by its elevation and its azimuths.
Layout Rings(std::initializer_list<std::pair<double, std::vector<double>>> rings) {
    Layout layout;
    for (auto const& [elevation, azimuths] : rings)
        for (const double azimuth : azimuths) layout.push_back(At(azimuth, elevation));
    return layout;
}

std::vector<double> Regular(unsigned int n, double offset = 0.0) {
    std::vector<double> azimuths;
    for (unsigned int i = 0; i < n; ++i) azimuths.push_back(offset + 360.0 * i / n);
    return azimuths;
}

struct NamedLayout {
    std::string name;
    Layout positions;
    unsigned int numTriplets;  // by Euler's formula for closed layouts, 0 where it says nothing
};

constexpr auto golden = std::numbers::phi_v<float>;

/// Layouts that people have, and designs that sample the sphere evenly.
const std::vector<NamedLayout> layouts = {
    {"cube", Layout(std::begin(Lume::Speakers::cube), std::end(Lume::Speakers::cube)), 12},
    {"5.0.4", Rings({{0, {-30, 30, 0, -110, 110}}, {45, {-45, 45, -135, 135}}}), 0},
    {"7.0.4", Rings({{0, {-30, 30, 0, -90, 90, -135, 135}}, {45, {-45, 45, -135, 135}}}), 0},
    {"9.1.6 without the subwoofer",
     Rings({{0, {-30, 30, 0, -110, 110, -150, 150, -60, 60}}, {45, {-45, 45, -90, 90, -135, 135}}}), 0},
    {"dome of 24", Rings({{0, Regular(12)}, {35, Regular(8, 10.0)}, {65, Regular(3)}, {90, {0}}}), 0},
    {"tetrahedron", {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}}, 4},
    {"octahedron", Signed(1, 0, 0), 8},
    {"icosahedron", Signed(0, 1, golden), 20},
    {"dodecahedron",
     Joined(Layout(std::begin(Lume::Speakers::cube), std::end(Lume::Speakers::cube)), Signed(0, 1 / golden, golden)),
     36},
    {"snub cube", SnubCube(), 44}};

double Determinant(CartesianVector const& a, CartesianVector const& b, CartesianVector const& c) {
    const auto d = [](float x) { return static_cast<double>(x); };
    return d(a.x) * (d(b.y) * d(c.z) - d(b.z) * d(c.y)) + d(a.y) * (d(b.z) * d(c.x) - d(b.x) * d(c.z)) +
           d(a.z) * (d(b.x) * d(c.y) - d(b.y) * d(c.x));
}

/// Whether any three loudspeakers at all enclose a direction: the convex hull, by brute force and Cramer's rule.
bool IsInHull(Layout const& p, CartesianVector const& s) {
    for (std::size_t i = 0; i < p.size(); ++i)
        for (std::size_t j = i + 1; j < p.size(); ++j)
            for (std::size_t k = j + 1; k < p.size(); ++k) {
                const double whole = Determinant(p[i], p[j], p[k]);
                if (std::abs(whole) > 1e-4 && Determinant(s, p[j], p[k]) / whole > 1e-4 &&
                    Determinant(p[i], s, p[k]) / whole > 1e-4 && Determinant(p[i], p[j], s) / whole > 1e-4)
                    return true;
            }
    return false;
}

// Ground truth: closed layouts fall into exactly the triangles of their hull; and wherever the hull is, three
// loudspeakers share the source with constant power and no gain below the tolerance, so that their vectors point at it.
TEST(VbapPanning, TripletsCoverTheHullAndPointAtTheSource) {
    Uniform uniform(5);
    for (auto const& [name, positions, numTriplets] : layouts) {
        const auto count = static_cast<unsigned int>(positions.size());
        VbapPanning panner(1, count);
        panner.SetLoudspeakerPositions(positions.data());
        EXPECT_EQ(numTriplets == 0 ? 0 : panner.GetNumTriplets(), numTriplets) << name;
        int numInside = 0;
        for (int i = 0; i < 1000; ++i) {
            const double distance = uniform(0.5, 8.0);
            const CartesianVector source =
                At(uniform(-180, 180), std::asin(uniform(-1, 1)) * 180 / std::numbers::pi, distance);
            if (!IsInHull(positions, source)) continue;
            ++numInside;
            const std::vector<float> gains = GainsAt(panner, source);
            CartesianVector velocity;
            for (unsigned int j = 0; j < count; ++j) {
                EXPECT_GE(gains[j], -0.01f);
                velocity.x += gains[j] * positions[j].x;
                velocity.y += gains[j] * positions[j].y;
                velocity.z += gains[j] * positions[j].z;
            }
            EXPECT_NEAR(Power(gains), 1.0, 1e-5) << name;
            EXPECT_LE(std::count_if(gains.begin(), gains.end(), [](float g) { return g != 0.0f; }), 3);
            EXPECT_LT(Lume::angle(velocity, source) * 180.0f / std::numbers::pi_v<float>, 1.0f) << name;
        }
        EXPECT_GT(numInside, 450) << name;
    }
}

// Red if output channels follow another order than the caller's, or if the first of equal triplets doesn't win.
TEST(VbapPanning, ASourceOnALoudspeakerIsItsAlone) {
    for (auto const& [name, positions, numTriplets] : layouts) {
        VbapPanning panner(1, static_cast<unsigned int>(positions.size()));
        panner.SetLoudspeakerPositions(positions.data());
        for (unsigned int i = 0; i < positions.size(); ++i) {
            const std::vector<float> gains = GainsAt(panner, positions[i]);
            for (unsigned int j = 0; j < gains.size(); ++j) EXPECT_NEAR(gains[j], i == j ? 1.0f : 0.0f, 2e-3f) << name;
            unsigned int active[3];
            panner.GetActiveTriplet(positions[i], active);
            EXPECT_TRUE(std::find(active, active + 3, i) != active + 3) << name;
        }
    }
    VbapPanning untold(1, 6);  // in a zigzag around the listener
    for (unsigned int i = 0; i < 6; ++i)
        EXPECT_NEAR(GainsAt(untold, At(60.0 * i, i % 2 == 0 ? 45.0 : -45.0))[i], 1.0f, 2e-3f) << i;
}

// Red if the tolerance is scaled with the distance or applied on the wrong side: just below a dome the top keeps its
// small negative gain, further below it is silent.
TEST(VbapPanning, SlightlyNegativeGainsStay) {
    const Layout dome = {{0, 1, 0}, {1, 0, 0}, {0, -1, 0}, {-1, 0, 0}, {0, 0, 1}};
    VbapPanning panner(1, 5);
    panner.SetLoudspeakerPositions(dome.data());
    EXPECT_NEAR(GainsAt(panner, At(45, -0.5))[4], -std::sin(0.5 * std::numbers::pi / 180), 1e-4);
    EXPECT_EQ(GainsAt(panner, At(45, -0.7))[4], 0.0f);
    EXPECT_EQ(GainsAt(panner, At(45, -0.5, 2.0))[4], 0.0f);
    EXPECT_NEAR(Power(GainsAt(panner, At(45, -30))), 1.0, 1e-6);
    EXPECT_EQ(Power(GainsAt(panner, {0, 0, -1})), 0.0);
}

// Layouts that can't be served are silent.
TEST(VbapPanning, BadLayoutsAreSilent) {
    const float nan = std::nanf("");
    for (Layout const& layout : {Rings({{0, Regular(5)}}), Layout(4, {1, 0, 0}), Layout(3), Layout(4, {nan, nan, nan}),
                                 Joined(Signed(1, 0, 0), Signed(1, 0, 0))}) {  // the last has each loudspeaker twice
        VbapPanning panner(1, static_cast<unsigned int>(layout.size()));
        panner.SetLoudspeakerPositions(layout.data());
        EXPECT_EQ(panner.GetNumTriplets(), 0u);
        EXPECT_EQ(Power(GainsAt(panner, {1, 1, 1})), 0.0);
        std::array<unsigned int, 3> active = {7, 7, 7};
        panner.GetActiveTriplet({1, 1, 1}, active.data());
        EXPECT_EQ(active, (std::array<unsigned int, 3>{0, 0, 0}));
    }
}

}  // namespace
