#include "reverb/delgen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "parameters/room_ir_parameters.h"
#include "reverb/fdens.h"
#include "reverb/recommended_delays_distribution.h"

namespace {

using Lume::Delgen;

std::vector<float> DelaysOf(Delgen const& generator) {
    return {generator.GetDelays(), generator.GetDelays() + generator.GetNumDelays()};
}

/// An independent computation in double precision.
std::vector<double> ExpectedDelays(unsigned int n, double minimum, double maximum, double distribution) {
    // Two delays take the ends, further ones fill up in an order of their own; beyond eight they go on upwards.
    const std::vector<double> rising[] = {{2, 37},
                                          {2, 23, 37},
                                          {2, 11, 23, 37},
                                          {2, 11, 23, 29, 37},
                                          {2, 11, 18, 23, 29, 37},
                                          {2, 7, 11, 18, 23, 29, 37},
                                          {2, 5, 7, 11, 18, 23, 29, 37}};
    std::vector<double> positions = rising[std::min(n, 8u) - 2];
    for (const double more : {46, 59, 71, 82, 97, 113, 127, 145})
        if (positions.size() < n) positions.push_back(more);
    const double last = positions.back();
    for (double& position : positions) position = (position - 2.0) / (last - 2.0);
    const double mean = std::accumulate(positions.begin(), positions.end(), 0.0) / n;
    const double exponent = (1.0 / distribution - 1.0) / (1.0 / mean - 1.0);
    for (double& position : positions) position = std::pow(position, exponent) * (maximum - minimum) + minimum;
    return positions;
}

// Red for a wrong entry or selection, a wrong mean, an inverted exponent, or a set that is shuffled or rounded.
TEST(Delgen, DelaysFollowTheTableBentByTheDistribution) {
    for (unsigned int n = 2; n <= 16; ++n)
        for (const float distribution : {0.1f, 0.5f, 0.8f}) {
            Delgen generator(n, 20.0f, 40.0f, 0.5f);
            float const* const delays = generator.SetMinMax(22.22f, 139.71f, distribution);
            const std::vector<double> expected = ExpectedDelays(n, 22.22, 139.71, static_cast<double>(distribution));
            double sum = 0.0;
            for (unsigned int i = 0; i < n; ++i) {
                EXPECT_NEAR(delays[i], expected[i], 1e-4) << n << " delays, " << distribution << ", delay " << i;
                sum += static_cast<double>(delays[i]);
            }
            EXPECT_EQ(delays[0], 22.22f);
            EXPECT_NEAR(generator.GetSum(), sum, 1e-2);
        }
}

// Red if the walk isn't the same each time, if it draws from the process's generator, or if its ends are not the ends
// of the range.
TEST(Delgen, MoreThanSixteenDelaysWalkTheSameWayEveryTime) {
    std::srand(5);
    Delgen generator(17, 10.0f, 110.0f, 0.5f);
    const std::vector<float> first = DelaysOf(generator);
    const int next = std::rand();
    std::srand(5);
    EXPECT_EQ(next, std::rand());
    EXPECT_EQ(DelaysOf(Delgen(17, 10.0f, 110.0f, 0.5f)), first);
    EXPECT_EQ(first.front(), 10.0f);
    EXPECT_NEAR(first.back(), 110.0f, 1e-4f);
    EXPECT_TRUE(std::is_sorted(first.begin(), first.end()));
    generator.SetNumDelays(8);
    EXPECT_NEAR(generator.GetDelays()[1], ExpectedDelays(8, 10.0, 110.0, 0.5)[1], 1e-4);
}

TEST(Delgen, MaximumFollowsTheSumWanted) {
    Delgen generator(8, 20.0f, 40.0f, 0.5f);
    float const* const delays = generator.SetMinSum(52.91f, 800.0f, 0.5f);
    EXPECT_NEAR(generator.GetMaximum(), 147.09f, 1e-3f);
    EXPECT_NEAR(delays[7], 147.09f, 1e-3f);
    EXPECT_NEAR(generator.GetSum(), 800.0f, 40.0f);  // the bend meets the mean only nearly
    generator.SetSum(1200.0f);
    EXPECT_NEAR(generator.GetMaximum(), (150.0f - 52.91f) / 0.5f + 52.91f, 1e-3f);

    // A sum too low for its minimum: the two ends change places.
    generator.SetMinSum(100.0f, 480.0f, 0.5f);  // maximum = 20
    EXPECT_NEAR(generator.GetMinimum(), 20.0f, 1e-4f);
    EXPECT_NEAR(generator.GetMaximum(), 100.0f, 1e-4f);
}

TEST(Delgen, RangeIsAlwaysWideEnoughAndTheDistributionLimited) {
    constexpr float width = 3.2879817f;
    Delgen generator(8, 20.0f, 20.0f, 0.9f);
    EXPECT_EQ(generator.GetDistribution(), 0.5f);  // the argument is passed over
    EXPECT_EQ(generator.GetMaximum(), 20.0f + width);
    generator.SetMinMax(0.2f, 0.5f, 7.0f);
    EXPECT_EQ(generator.GetMinimum(), 1.0f);
    EXPECT_EQ(generator.GetMaximum(), 1.0f + width);
    EXPECT_EQ(generator.GetDistribution(), 0.9f);
    generator.SetNumDelays(4);
    EXPECT_EQ(generator.GetDistribution(), 0.5f);
    generator.SetMaximum(50.0f);
    generator.SetMinimum(60.0f);
    EXPECT_EQ(generator.GetMinimum(), 50.0f);
    EXPECT_EQ(generator.GetMaximum(), 50.0f + width);
    generator.SetMaximum(2.0f);
    EXPECT_EQ(generator.GetMaximum(), 50.0f + width);

    EXPECT_EQ(Delgen(1, 20.0f, 40.0f, 0.5f).GetDelays()[0], 40.0f);
    EXPECT_EQ(Delgen(0, 20.0f, 40.0f, 0.5f).GetSum(), 0.0f);
}

// Values by hand: m = 0.05291 s, N = 8.
TEST(Fdens, SumLiesBetweenWhatModesAndEchoesAllow) {
    for (auto const& [sum, expected] : {std::pair{0.8f, 0.8f}, {3.0f, 1.020613f}, {0.1f, 0.63492f}, {9.0f, 2.25f}})
        EXPECT_NEAR(Lume::fdens(sum, 52.91f, 8, 3.0f), expected, 1e-5f) << sum;

    float minimumSum, maximumSum, densityBound, maximumDelay, echoDensity;
    EXPECT_NEAR(Lume::fdens(0.8f, 52.91f, 8, 3.0f, minimumSum, maximumSum, densityBound, maximumDelay, echoDensity),
                0.8f, 1e-6f);
    EXPECT_NEAR(minimumSum, 0.63492f, 1e-5f);
    EXPECT_NEAR(maximumSum, 1.90476f, 1e-5f);
    EXPECT_NEAR(densityBound, 1.020613f, 1e-5f);
    EXPECT_NEAR(maximumDelay, 147090.0f, 0.1f);
    EXPECT_NEAR(echoDensity, 448.0f / (147.09f - 0.05291f) * 0.001f, 1e-8f);
}

// Values by hand for 500 cubic metres.
TEST(RecommendedDelaysDistribution, ProposesOrderedTimes) {
    float es, ee, ed, cs, ce, cd, rs, density = 0.86f;
    Lume::RecommendedDelaysDistribution(8, 500.0f, 0.86f, es, ee, ed, cs, ce, cd, rs, density);
    const float proposed[] = {es, ee, ed, cs, ce, cd, rs, density};
    const float expected[] = {13.9793f, 17.8885f, 0.6f, 16.0997f, 30.7428f, 0.7f, 27.6685f, 0.416477f};
    for (std::size_t i = 0; i < 8; ++i) EXPECT_NEAR(proposed[i], expected[i], 2e-5f * expected[i] + 1e-5f) << i;
    density = 0.86f;
    Lume::RecommendedDelaysDistribution(16, 500.0f, 0.86f, es, ee, ed, cs, ce, cd, rs, density);
    EXPECT_NEAR(density, 0.832954f, 1e-4f);

    for (const float volume : {-50.0f, 10.0f, 3000.0f, 15000.0f, 1e6f}) {
        density = 1.0f;
        Lume::RecommendedDelaysDistribution(8, volume, 1.0f, es, ee, ed, cs, ce, cd, rs, density);
        EXPECT_LE(es + 1.0f, ee) << volume;
        EXPECT_LE(es + 1.0f, cs) << volume;
        EXPECT_LE(cs + 1.0f, ce) << volume;
        EXPECT_LE(cs, rs) << volume;
        EXPECT_TRUE(ed >= 0.1f && ed <= 0.9f && cd >= 0.1f && cd <= 0.9f) << volume;
    }
}

// Red if a raise also counts as above the maximum: then 121 would be cut to 120.
TEST(RoomIRParameters, ConstraintsSeeTheResultsBeforeThem) {
    Lume::RoomIRParameters times(200.0f, 10.0f, 2.0f, 0.0f, 5.0f, 3.0f, -1.0f, 2.0f, 9.0f);
    times.ApplyConstraints(1.0f, 8);
    EXPECT_EQ((std::array{times.earlyStart, times.earlyEnd, times.earlyDistribution, times.clusterStart,
                          times.clusterEnd, times.clusterDistribution, times.reverbStart, times.modalDensity}),
              (std::array{120.0f, 121.0f, 0.9f, 121.0f, 122.0f, 0.1f, 121.0f, 0.2f}));

    Lume::RoomIRParameters late(20.0f, 40.0f, 0.5f, 0.0f, 40.0f, 100.0f, 0.5f, 140.0f, 0.3f);
    late.ApplyConstraints(1.0f, 16);  // 2 * 1.5 * 0.1 * 8
    EXPECT_NEAR(late.modalDensity, 2.4f, 1e-5f);
}

}  // namespace
