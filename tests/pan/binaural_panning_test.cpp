#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "hrtf/hrtf.h"
#include "pan/binaural/binaural_panning_itd.h"
#include "pan/panning_support.h"

namespace {

using Lume::BinauralPanning;
using Lume::CartesianVector;

constexpr float radius = 0.0875f;
constexpr double pi = std::numbers::pi;

struct Delays {
    float left, right;
};

Delays DelaysOf(BinauralPanning::ITDType type, CartesianVector const& position, float itd = 0.0f) {
    Lume::HrtfPoint point;
    point.itd = itd;
    Delays delays{};
    BinauralPanning::ComputeMonauralDelays(type, position, point, radius, delays.left, delays.right);
    return delays;
}

/// Half the ITD [ms]: positive when the left ear hears later. The delays are shared out around 1 ms.
double HalfItd(BinauralPanning::ITDType type, CartesianVector const& position) {
    const Delays delays = DelaysOf(type, position);
    EXPECT_NEAR(delays.left + delays.right, 2.0, 1e-6) << BinauralPanning::GetITDTypeName(type);
    return 0.5 * static_cast<double>(delays.left - delays.right);
}

/// The shortest way from a source to a point on a sphere, in steps along the surface: no formula of arcs or tangents.
double ShortestPath(double x, double y, double earX) {
    double best = 1e9;
    const double a = static_cast<double>(radius);
    for (int i = 0; i < 20000; ++i) {
        const double angle = 2.0 * pi * i / 20000;
        const double px = a * std::cos(angle), py = a * std::sin(angle);
        // The straight part must not cross the sphere: the surface point faces the source.
        if ((x - px) * px + (y - py) * py < -1e-9) continue;
        const double arc = std::acos(std::clamp(px * earX / (a * a), -1.0, 1.0)) * a;
        best = std::min(best, std::hypot(x - px, y - py) + arc);
    }
    return best;
}

// Red if a model's path isn't the one that it claims to follow, on either side and behind.
TEST(ItdModels, FollowTheGeometryOfTheHead) {
    constexpr double halfMsPerMetre = 1000.0 / (2.0 * 340.0);
    const double a = static_cast<double>(radius);
    for (const double azimuth : {0.0, 20.0, 60.0, 90.0, -90.0, 130.0, -150.0})
        for (const double distance : {0.02, 0.1, 0.5, 3.0}) {
            const double clipped = std::max(distance, a);
            const double x = clipped * std::sin(azimuth * pi / 180.0), y = clipped * std::cos(azimuth * pi / 180.0);
            const CartesianVector source = At(azimuth, 0.0, distance);
            const double straight = std::hypot(x + a, y) - std::hypot(x - a, y);
            EXPECT_NEAR(HalfItd(BinauralPanning::basic, source), straight * halfMsPerMetre, 1e-4) << azimuth;
            const double around = ShortestPath(x, y, -a) - ShortestPath(x, y, a);
            EXPECT_NEAR(HalfItd(BinauralPanning::miller, source), around * halfMsPerMetre, 1e-4)
                << azimuth << " " << distance;
        }
    // Far away, where waves are plane: the way around is longer by a (angle + sine).
    for (const double azimuth : {0.0, 20.0, 60.0, 90.0, 130.0, -35.0, -140.0, 180.0}) {
        const double lateral = std::asin(std::sin(azimuth * pi / 180.0));
        const double plane = a * (lateral + std::sin(lateral)) * halfMsPerMetre;
        EXPECT_NEAR(HalfItd(BinauralPanning::larcherjot, At(azimuth)), plane, 1e-5) << azimuth;
        EXPECT_NEAR(HalfItd(BinauralPanning::woodworth, At(azimuth)), plane, 1e-5) << azimuth;
        EXPECT_NEAR(HalfItd(BinauralPanning::miller, At(azimuth, 0.0, 1000.0)), plane, 3e-4) << azimuth;
        // Upward, one model ignores it, one shrinks with the cosine, and two go by the lateral angle.
        const double up = std::cos(pi / 3.0);
        EXPECT_NEAR(HalfItd(BinauralPanning::woodworth, At(azimuth, 60.0)), plane, 1e-5);
        EXPECT_NEAR(HalfItd(BinauralPanning::savioja, At(azimuth, 60.0)), plane * up, 1e-5);
        const double u = std::sin(lateral) * up;
        EXPECT_NEAR(HalfItd(BinauralPanning::larcherjot, At(azimuth, 60.0)), a * (std::asin(u) + u) * halfMsPerMetre,
                    1e-5);
    }
    // The measured ITD as it is, moved so that no delay is negative; and none.
    const Delays wide = DelaysOf(BinauralPanning::measurement, At(90.0), -3.0f);
    EXPECT_TRUE(wide.left == 0.0f && wide.right == 3.0f);
    const Delays same = DelaysOf(BinauralPanning::none, At(70.0), -3.0f);
    EXPECT_TRUE(same.left == 1.0f && same.right == 1.0f);
}

// Red if rounding makes a square root of a negative number, or a source at a singular place isn't a number.
TEST(ItdModels, AreFiniteEverywhere) {
    Uniform uniform(7);
    for (int i = 0; i < 20000; ++i) {
        const double distance = i < 3        ? 0.0
                                : i % 3 == 0 ? static_cast<double>(radius) * (1.0 + 1e-6 * (i % 50))
                                             : uniform(0.0, 2.0);
        const double azimuth = i % 2 == 0 ? 90.0 * (i % 5) + 1e-4 * (i % 7) : uniform(-180.0, 180.0);
        for (const auto model : {BinauralPanning::basic, BinauralPanning::woodworth, BinauralPanning::larcherjot,
                                 BinauralPanning::savioja, BinauralPanning::miller}) {
            const Delays delays = DelaysOf(model, At(azimuth, uniform(-1.0, 1.0) * (i % 90), distance));
            ASSERT_TRUE(delays.left >= 0.0f && delays.left < 2.5f) << model << " " << azimuth << " " << distance;
            ASSERT_TRUE(delays.right >= 0.0f && delays.right < 2.5f) << model << " " << azimuth << " " << distance;
        }
    }
}

TEST(ItdModels, NamesAreNotAllReadBack) {
    EXPECT_EQ(BinauralPanning::GetITDType("woodworth3D"), BinauralPanning::larcherjot);
    EXPECT_EQ(BinauralPanning::GetITDType("NoITD"), BinauralPanning::none);
    for (char const* unknown : {"none", "larchetjot", "", "Miller"})
        EXPECT_EQ(BinauralPanning::GetITDType(unknown), BinauralPanning::measurement) << unknown;
    EXPECT_STREQ(BinauralPanning::GetITDTypeName(BinauralPanning::larcherjot), "larchetjot");
    EXPECT_STREQ(BinauralPanning::GetITDTypeName(static_cast<BinauralPanning::ITDType>(7)), "");
    EXPECT_STREQ(BinauralPanning::GetITDTypeName(static_cast<BinauralPanning::ITDType>(8)), "measurement");
    EXPECT_STREQ(BinauralPanning::GetITDTypeName(static_cast<BinauralPanning::ITDType>(-1)), "measurement");
}

/// Writes down what a panner is told about a source.
class Recorder : public Lume::BinauralPanningITD {
public:
    explicit Recorder(unsigned int inputs) : BinauralPanningITD(inputs, 2) {}
    void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) override {
        ++calls;
        last = position;
        lastIndex = index;
        lastFlag = flag;
    }
    int calls = 0;
    CartesianVector last;
    unsigned int lastIndex = 0;
    bool lastFlag = false;
};

// Red if the listener's place or yaw moves sources the wrong way, or if a change doesn't reach all of them.
TEST(BinauralPanning, SourcesMoveAgainstTheListener) {
    Recorder panner(2);
    panner.SetSourcePosition(1, {3.0f, 4.0f, 5.0f}, true);
    EXPECT_EQ(panner.lastIndex, 1u);
    EXPECT_TRUE(panner.lastFlag);
    panner.SetListenerPosition({1.0f, 3.0f, 4.0f});
    EXPECT_EQ(panner.calls, 3);
    EXPECT_TRUE(panner.last.x == 2.0f && panner.last.y == 1.0f && panner.last.z == 1.0f);
    EXPECT_FALSE(panner.lastFlag);
    // He turns right, towards the source and past it: it is ahead of him now, and a little to the left.
    panner.SetListenerYaw(90.0f);
    EXPECT_EQ(panner.calls, 5);
    EXPECT_NEAR(panner.last.x, -1.0f, 1e-6f);
    EXPECT_NEAR(panner.last.y, 2.0f, 1e-6f);
    EXPECT_EQ(panner.last.z, 1.0f);

    panner.SetITDType("measurement");
    EXPECT_EQ(panner.calls, 5);
    panner.SetITDType("miller");
    EXPECT_EQ(panner.calls, 7);
    float left = 9.0f, right = 9.0f;
    panner.getMonauralDelays(At(90.0), static_cast<Lume::Hrtf*>(nullptr), left, right);
    EXPECT_GT(left, right);
    panner.SetITDType("unheard of");
    panner.getMonauralDelays(At(90.0), static_cast<Lume::Hrtf*>(nullptr), left, right);
    EXPECT_EQ(left, 0.0f);
    EXPECT_EQ(right, 0.0f);
}

// Red if the sides are mixed up, if the effect doesn't grow to a metre and stop there, or if the height isn't seen.
TEST(BinauralPanningITD, DelaysAndWeakensTheFarEar) {
    Lume::BinauralPanningITD panner(1, 2);
    const auto expect = [&](Lume::CartesianVector const& position, double v) {
        SCOPED_TRACE(testing::Message() << position.x << " " << position.y << " " << position.z);
        PlaceAndWait(panner, position);
        const Arrivals ears(panner);
        for (const std::size_t ear : {0u, 1u}) {
            const double far = ear == 0 ? v : -v;
            EXPECT_NEAR(ears.sum[ear], 0.70710678 - far, 1e-4);
            EXPECT_NEAR(ears.delay[ear] / 44.1, 1.0 + far, 1e-3);
        }
    };
    expect(At(90.0, 0.0, 2.0), 0.35);
    expect(At(90.0, 0.0, 0.5), 0.175);
    expect(At(-90.0), -0.35);
    expect(At(30.0, 60.0), 0.35 * 0.25);
    expect(At(150.0, -60.0), 0.35 * 0.25);
    expect(At(77.0, 90.0), 0.0);
    expect({0.0f, 0.0f, 0.0f}, 0.0);
    panner.SetListenerHeadRadius(1.0f);
    expect(At(90.0), 0.35);
}

}  // namespace
