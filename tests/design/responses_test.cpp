#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

#include "geometry/vector_algebra.h"
#include "orvanverb/design/ear_ring.h"
#include "orvanverb/design/minimum_phase.h"
#include "orvanverb/design/responses.h"
#include "orvanverb/design/sphere.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

using Response = std::vector<double>;

std::vector<float> Narrow(Response const& response) {
    return {response.begin(), response.end()};
}

// Red if the gain changes with the rate, if something folds back from beyond half of it, or if the delay is of the
// wrong rate.
TEST(Resample, KeepsLevelsBelowBothHalvesAndNothingAbove) {
    std::vector<float> click(200, 0.0f);
    click[100] = 1.0f;
    for (const int to : {32000, 44100, 96000}) {
        const std::vector<float> made = Narrow(program::Resample(click, 48000, to, 10.0));
        for (const double hertz : {100.0, 5000.0, 14000.0}) EXPECT_NEAR(GainDbAt(made, hertz / to), 0.0, 0.05) << to;
        if (to > 48000) {
            EXPECT_LT(GainDbAt(made, 26000.0 / to), -60.0);
        }
        const auto peak = std::max_element(made.begin(), made.end()) - made.begin();
        EXPECT_NEAR(static_cast<double>(peak), 110.0 * to / 48000.0, 1.0);
    }
}

// Red if the level isn't met, if the response isn't causal, or if another response of that level has more energy early
// on.
TEST(MinimumPhaseResponse, HasItsLevelAsEarlyAsCanBe) {
    const std::vector<double> frequencies = {100.0, 1000.0, 5000.0, 20000.0}, level = {6.0, 0.0, -12.0, -3.0};
    const std::vector<float> made = Narrow(program::MinimumPhaseResponse(level, frequencies, 48000.0, 0.0, 512));
    for (std::size_t i = 0; i < level.size(); ++i) EXPECT_NEAR(GainDbAt(made, frequencies[i] / 48000.0), level[i], 0.1);
    // All its zeros lie within the unit circle just if the mean of the level is that of the first sample.
    double mean = 0.0;
    for (int k = 0; k < 4096; ++k) mean += GainDbAt(made, (k + 0.5) / 8192.0) / 4096.0;
    EXPECT_NEAR(20.0 * std::log10(std::abs(static_cast<double>(made[0]))), mean, 0.01);
}

// Red if a level is added instead of taken out, or lands at the wrong frequencies.
TEST(Equalise, TakesTheLevelOut) {
    const std::vector<double> frequencies = {100.0, 1000.0, 10000.0}, level = {-6.0, 0.0, 9.0};
    std::vector<Response> responses = {program::MinimumPhaseResponse(level, frequencies, 44100.0, 0.0, 256)};
    program::Equalise(responses, level, frequencies, 44100);
    for (const double hertz : {100.0, 400.0, 1000.0, 4000.0, 10000.0})
        EXPECT_NEAR(GainDbAt(Narrow(responses[0]), hertz / 44100.0), 0.0, 0.1) << hertz;
}

// Red if responses are cut each at its own onset: the time between the ears is what is to stay.
TEST(Trim, KeepsTheTimeBetweenTheEars) {
    std::vector<Response> responses(2, Response(4000, 0.0));
    responses[0][1000] = 1.0;
    responses[1][1030] = 0.5;
    const auto made = program::Trim(responses, 48000, 256);
    const auto at = [&](std::size_t ear) {
        return std::max_element(made[ear].begin(), made[ear].end()) - made[ear].begin();
    };
    EXPECT_EQ(at(1) - at(0), 30);
    EXPECT_EQ(at(0), 24);  // half a millisecond
    EXPECT_LE(made[0].size(), 256u);
}

// Red if directions crowd somewhere, or if a crowd of measurements counts more than its part of the sphere.
TEST(Sphere, DirectionsAreEvenAndCrowdsShareTheirPart) {
    std::vector<Lume::CartesianVector> even = program::EvenDirections(100);
    Lume::CartesianVector sum;
    for (Lume::CartesianVector const& p : even) {
        EXPECT_NEAR(Length(p), 1.0f, 1e-6f);
        sum = sum + p;
    }
    EXPECT_LT(Length(sum), 1.0f);
    std::vector<double> shares = program::SphereShares(even);
    EXPECT_NEAR(std::accumulate(shares.begin(), shares.end(), 0.0), 1.0, 1e-9);
    EXPECT_LT(*std::max_element(shares.begin(), shares.end()), 0.015);
    EXPECT_GT(*std::min_element(shares.begin(), shares.end()), 0.006);

    const double whole = shares[50];
    for (int i = 0; i < 9; ++i)
        even.push_back(even[50] + Lume::CartesianVector{0.01f * static_cast<float>(i), 0, 0.01f});
    shares = program::SphereShares(even);
    EXPECT_NEAR(shares[50] + std::accumulate(shares.begin() + 100, shares.end(), 0.0), whole, 0.004);
}

// Red if responses between two measurements are mixed without being brought to one time: their highs would cancel.
TEST(EarRing, StandsBetweenMeasurementsWithoutLosingTheHighs) {
    constexpr unsigned int length = 128;
    Lume::SdifSet set;
    set.header.samplingRate = 48000;
    set.header.numCoefficients = length;
    set.header.numChannels = 2;
    for (int degrees = 0; degrees < 360; degrees += 10) {
        const double angle = degrees * std::numbers::pi / 180.0;
        Lume::SdifSetPoint point{
            {{static_cast<float>(std::sin(angle)), static_cast<float>(std::cos(angle)), 0.0f}}, 0.0f, {}};
        point.coefficients.resize(2 * length, 0.0f);
        point.coefficients[static_cast<std::size_t>(std::lround(40.0 + 15.0 * std::sin(angle)))] = 1.0f;
        point.coefficients[length + static_cast<std::size_t>(std::lround(40.0 - 15.0 * std::sin(angle)))] = 1.0f;
        set.points.push_back(point);
    }
    const program::EarRing ring(set);
    EXPECT_TRUE(ring.Covers(95.0));
    for (const double azimuth : {5.0, 45.0, 175.0, -95.0})
        for (Response const& ear : ring.At(azimuth))
            for (const double hertz : {1000.0, 8000.0, 16000.0})
                EXPECT_NEAR(GainDbAt(Narrow(ear), hertz / 48000.0), 0.0, 1.0) << azimuth << ", " << hertz;
}

}  // namespace
