#include "pan/binaural/binaural_panning_nearfield.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <numbers>

#include "pan/panning_support.h"
#include "pan/set_file.h"
#include "support/frequency_response.h"
#include "support/temporary_file.h"

namespace {

using Lume::BinauralPanningNearfield;
using Lume::CartesianVector;
using orvandsp::allActiveInputs;

constexpr double pi = std::numbers::pi;
constexpr double rate = 44100.0;
constexpr double sphere = 2.08, headRadius = 0.0875;

struct Ear {
    double gain;          // without the level of 1/sqrt(2) that the panner gives a source
    double delaySeconds;  // at 100 Hz
};

/// Places the only source and hears it once glides and fades are over.
std::array<Ear, 2> Hear(BinauralPanningNearfield& panner, CartesianVector const& position) {
    PlaceAndWait(panner, position);
    const Channels out = ImpulseResponses(panner, 512);
    std::array<Ear, 2> ears{};
    for (const std::size_t e : {0u, 1u}) {
        const std::complex<double> response = std::numbers::sqrt2 * ResponseAt(out.data[e], 100.0 / rate);
        ears[e] = {std::abs(response), -std::arg(response) / (2.0 * pi * 100.0)};
    }
    return ears;
}

double Metres(CartesianVector const& a, CartesianVector const& b) {
    return std::hypot(static_cast<double>(a.x - b.x), static_cast<double>(a.y - b.y), static_cast<double>(a.z - b.z));
}

const CartesianVector leftEar{-0.0875f, 0.0f, 0.0f}, rightEar{0.0875f, 0.0f, 0.0f};

// Red if the level doesn't follow the distance from the head or from each ear, rises within the least distance, or
// isn't that of the measurement on its sphere.
TEST(BinauralPanningNearfield, LevelFollowsTheDistance) {
    BinauralPanningNearfield panner(1, 2);
    panner.EnableHrtfFilters(false);
    const auto expect = [&](CartesianVector const& position, double left, double right) {
        const auto ears = Hear(panner, position);
        EXPECT_NEAR(ears[0].gain, left, 1e-4 * left) << position.x << " " << position.y;
        EXPECT_NEAR(ears[1].gain, right, 1e-4 * right) << position.x << " " << position.y;
    };
    expect(At(30.0, 0.0, sphere), 1.0, 1.0);
    expect(At(-70.0, 20.0, 0.5), sphere / 0.5, sphere / 0.5);
    expect(At(10.0, 0.0, 0.1), sphere / 0.2, sphere / 0.2);
    panner.SetMinimumRadiusAroundListener(0.01f);  // becomes the head's
    expect(At(10.0, 0.0, 0.1), sphere / 0.1, sphere / 0.1);
    expect(At(10.0, 0.0, 0.05), sphere / headRadius, sphere / headRadius);
    panner.SetHRTFMeasurementSphereRadius(1.0f);
    expect(At(0.0, 0.0, 2.0), 0.5, 0.5);

    panner.EnableGainsCorrection(true);
    for (const CartesianVector position : {At(80.0, 0.0, 0.2), At(-30.0, 40.0, 1.5)})
        expect(position, 1.0 / Metres(position, leftEar), 1.0 / Metres(position, rightEar));
    expect(leftEar, 1.0 / 0.001, 1.0 / (2.0 * headRadius));  // in the ear itself it stays finite
    panner.EnableDistanceAttenuation(false);
    expect(At(80.0, 0.0, 0.2), 1.0, 1.0);
}

/// A set on a circle of the measurement's radius, with four more directions above and below the ears, in which each
/// direction has a gain of its own: what is heard tells the direction.
constexpr unsigned int numDirections = 360;
SetDescription Circle() {
    SetDescription set;
    for (unsigned int i = 0; i < numDirections; ++i) set.positions.push_back(At(1.0 * i, 0.0, sphere));
    for (const double elevation : {60.0, -60.0})
        for (const double azimuth : {90.0, -90.0}) set.positions.push_back(At(azimuth, elevation, sphere));
    return set;
}
float GainOfDirection(std::uint32_t point, std::uint32_t ear) {
    return static_cast<float>(point + 1) * (ear == 0 ? 0.01f : 0.02f);
}

/// Number of the direction of the circle in which an ear sees a source.
unsigned int DirectionFrom(CartesianVector const& ear, CartesianVector const& source) {
    // Steps along the line until it leaves the sphere.
    CartesianVector p = ear;
    for (double t = 0.0; p.radius() < static_cast<float>(sphere); t += 1e-4 / Metres(source, ear)) {
        const auto s = static_cast<float>(t);
        p = {ear.x + s * (source.x - ear.x), ear.y + s * (source.y - ear.y), ear.z + s * (source.z - ear.z)};
    }
    const double azimuth = std::atan2(static_cast<double>(p.x), static_cast<double>(p.y)) * 180.0 / pi;
    return static_cast<unsigned int>(std::lround(azimuth + 360.0)) % numDirections;
}

// Red if an ear takes the direction of the head or of the other ear, or the filter of the other ear.
TEST(BinauralPanningNearfield, EachEarTakesTheDirectionInWhichItSeesTheSource) {
    const TemporaryFile file("circle.hrtf", SetFile(Circle(), GainOfDirection));
    BinauralPanningNearfield panner(1, 2);
    panner.EnableDistanceAttenuation(false);
    ASSERT_TRUE(panner.LoadFromFile(file.name.c_str()));
    EXPECT_EQ(panner.GetHrtfHeaderInfos()->numPoints, numDirections + 4);
    const auto directions = [&](CartesianVector const& position) {
        const auto ears = Hear(panner, position);
        return std::array{std::lround(ears[0].gain / 0.01) - 1, std::lround(ears[1].gain / 0.02) - 1};
    };
    for (const double distance : {0.21, 0.4, 1.0, 1.9})
        for (const double azimuth : {1.0, 42.0, 88.0, 134.0, -13.0, -101.0}) {
            const CartesianVector position = At(azimuth, 0.0, distance);
            const auto [left, right] = directions(position);
            EXPECT_EQ(left, DirectionFrom(leftEar, position)) << azimuth << " " << distance;
            EXPECT_EQ(right, DirectionFrom(rightEar, position)) << azimuth << " " << distance;
        }
    // Too close: the source is lifted onto the sphere of the least distance, above the head.
    const auto [left, right] = directions({0.03f, 0.0f, 0.0f});
    EXPECT_EQ(left, numDirections);
    EXPECT_EQ(right, numDirections + 1);

    panner.EnableCrossEarsHrtfSelection(false);
    EXPECT_EQ(directions(At(42.0, 0.0, 0.3)), (std::array{42l, 42l}));
}

// Red if the correction has the wrong sign on one side of the sphere, or acts on one ear only.
TEST(BinauralPanningNearfield, DelaysFollowTheEarsOwnDirections) {
    const TemporaryFile file("circle.hrtf", SetFile(Circle(), GainOfDirection));
    BinauralPanningNearfield panner(1, 2);
    ASSERT_TRUE(panner.LoadFromFile(file.name.c_str()));
    panner.SetITDType(Lume::BinauralPanning::larcherjot);
    for (const double distance : {0.3, 1.0, 3.0})
        for (const double azimuth : {1.0, 63.0, -118.0}) {
            const CartesianVector position = At(azimuth, 0.0, distance);
            panner.EnableDelaysCorrection(false);
            const auto plain = Hear(panner, position);
            panner.EnableDelaysCorrection(true);
            const auto corrected = Hear(panner, position);
            const double toLeft = Metres(position, Circle().positions[DirectionFrom(leftEar, position)]);
            const double toRight = Metres(position, Circle().positions[DirectionFrom(rightEar, position)]);
            const double h = 0.5 * (toLeft - toRight) / 340.0;
            const double sign = distance > sphere ? 1.0 : -1.0;
            // A glide ends beside its target by up to half a sample.
            EXPECT_NEAR(corrected[0].delaySeconds - plain[0].delaySeconds, sign * (std::abs(h) + h), 1.2e-5);
            EXPECT_NEAR(corrected[1].delaySeconds - plain[1].delaySeconds, sign * (std::abs(h) - h), 1.2e-5);
        }
}

// Red if compensation filters don't act, act by the height, or go away beyond their range; or if a wrong set is taken.
TEST(BinauralPanningNearfield, CompensationFiltersActWithinTheirRange) {
    SetDescription near;
    near.dataType = "NearfieldCompensationFilter";
    near.numCoefficients = 41;
    near.positions = {At(0.0, 0.0, 0.3), At(0.0, 0.0, 1.0), At(90.0, 0.0, 0.3), At(0.0, 70.0, 0.9)};
    // Half of the gain is that of the last of ten sections.
    const auto gain = [](std::uint32_t point, std::uint32_t place) {
        return place % 41 == 0    ? 0.5f * static_cast<float>(point + 1 + 10 * (place / 41))
               : place % 41 == 37 ? 1.0f
                                  : 0.0f;
    };
    const TemporaryFile file("set.near", SetFile(near, gain));
    near.dataType = "Binaural";
    const TemporaryFile wrong("wrong.near", SetFile(near, gain));

    BinauralPanningNearfield panner(1, 2);
    panner.EnableHrtfFilters(false);
    panner.EnableDistanceAttenuation(false);
    EXPECT_FALSE(panner.LoadCompensationFilters(""));
    EXPECT_FALSE(panner.LoadCompensationFilters(wrong.name.c_str()));
    EXPECT_EQ(panner.GetCompensationFiltersInfo(), nullptr);
    EXPECT_NEAR(Hear(panner, At(0.0, 0.0, 0.3))[0].gain, 1.0, 1e-4);
    ASSERT_TRUE(panner.LoadCompensationFilters(file.name.c_str()));
    EXPECT_EQ(panner.GetCompensationFiltersInfo()->numPoints, 4u);
    for (const unsigned int inputs : {0u, 1u}) panner.SetNumInputs(inputs);  // they fit an input that comes later
    const auto expect = [&](CartesianVector const& position, double left) {
        const auto ears = Hear(panner, position);
        EXPECT_NEAR(ears[0].gain, left, 1e-3);
        EXPECT_NEAR(ears[1].gain, left + 10.0, 1e-3);
    };
    expect(At(0.0, 0.0, 0.2), 1.0);
    expect(At(0.0, 70.0, 0.9), 1.0);  // its place on the plane is near
    expect(At(60.0, 0.0, 0.4), 3.0);
    expect(At(10.0, 0.0, 0.9), 2.0);
    expect(At(90.0, 0.0, 1.5), 2.0);
    panner.EnableNearfieldFilters(false);
    EXPECT_NEAR(Hear(panner, At(0.0, 0.0, 0.3))[1].gain, 1.0, 1e-4);

    // Filters that the set doesn't fill: nothing is read behind it (the sanitizers watch).
    panner.EnableHrtfFilters(true);
    for (const auto type : {Lume::firFilter, Lume::biquadFilters}) panner.setHrtfFilterType(type, true);
    PlaceAndWait(panner, At(40.0));
}

}  // namespace
