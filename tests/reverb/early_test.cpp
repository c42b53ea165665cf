#include "reverb/early.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "reverb/early_gains.h"
#include "support/allocation_count.h"
#include "support/channels.h"
#include "support/signals.h"

namespace {

std::vector<std::vector<float>> Heard(Lume::Early& early, std::vector<std::vector<float>> const& inputs,
                                      short const* active = orvandsp::allActiveInputs) {
    return Processed(early, Channels(inputs), early.GetNumDelays(), 64, active).data;
}

/// Where the only sample that isn't 0 stands, and 1 for it.
void ExpectImpulseAt(std::vector<float> const& signal, float samples) {
    const auto peak = std::max_element(signal.begin(), signal.end());
    EXPECT_EQ(*peak, 1.0f);
    EXPECT_EQ(std::count(signal.begin(), signal.end(), 0.0f), static_cast<long>(signal.size()) - 1);
    // A glide ends beside its target by up to 0.5 samples, and the nearest sample by another half.
    EXPECT_NEAR(static_cast<float>(peak - signal.begin()), samples, 1.01f);
}

const std::vector<float> quarterSecond(64 * 172, 0.0f);

// Red if a tap goes to another output, the line moves on before all have read, or new taps run at another rate.
TEST(Early, EachTapIsOneOutputOneImpulseLater) {
    for (const float rate : {44100.0f, 48000.0f}) {
        Lume::Early early(6, 1, 44100.0f);
        early.Configure(rate, 64, true);
        early.SetNumDelays(8);
        const float delays[] = {20.0f, 31.0f, 25.0f, 70.0f, 1.0f, 119.3f, 50.0f, 44.4f};
        early.SetDelays(delays);
        Heard(early, {quarterSecond});
        const auto out = Heard(early, {MakeImpulse(64 * 128)});
        for (std::size_t i = 0; i < 8; ++i) ExpectImpulseAt(out[i], delays[i] * rate * 0.001f);
        EXPECT_NEAR(early.GetLength(), 118.3f, 1e-3f);
    }
}

TEST(Early, TwoInputsTakeTurns) {
    Lume::Early early(7, 2, 44100.0f);
    early.Configure(44100.0f, 64, true);
    const float delays[] = {10.0f, 20.0f, 30.0f, 40.0f, 50.0f, 60.0f, 70.0f};
    early.SetDelays(delays);
    EXPECT_NEAR(early.GetLength(), 50.0f, 1e-3f);  // the seventh has no tap
    Heard(early, {quarterSecond, quarterSecond});
    const auto out = Heard(early, {MakeImpulse(4096), std::vector<float>(4096, 0.0f)});
    for (std::size_t i = 0; i < 6; i += 2) ExpectImpulseAt(out[i], delays[i] * 44.1f);
    for (std::size_t i = 1; i < 6; i += 2) EXPECT_EQ(out[i], std::vector<float>(4096, 0.0f));
    EXPECT_EQ(out[6], std::vector<float>(4096, 9.0f));
}

// Red if an inactive input lets the line run on.
TEST(Early, TimeStandsStillWhileTheInputIsInactive) {
    Lume::Early early(2, 1, 44100.0f);
    early.Configure(44100.0f, 64, true);
    const float delays[] = {10.0f, 20.0f};
    early.SetDelays(delays);
    Heard(early, {quarterSecond});
    Heard(early, {MakeImpulse(320)});
    const short inactive[] = {0};
    EXPECT_EQ(Heard(early, {MakeImpulse(6400)}, inactive)[0], std::vector<float>(6400, 0.0f));
    ExpectImpulseAt(Heard(early, {std::vector<float>(6400, 0.0f)})[0], 441.0f - 320.0f);
}

TEST(Early, NewDelaysLieOnALineAndOldOnesStay) {
    Lume::Early early(4, 1, 44100.0f);
    const float delays[] = {5.0f, 6.0f, 7.0f, 8.0f};
    float now[8] = {};
    early.GetDelays(now);
    EXPECT_NEAR(now[0], 22.22f, 1e-4f);
    EXPECT_NEAR(now[3], 39.71f, 1e-4f);
    early.SetDelays(delays);
    early.SetNumDelays(8);
    early.GetDelays(now);
    const float expected[] = {5.0f, 6.0f, 7.0f, 8.0f, 20.0f * 4 / 7 + 20, 20.0f * 5 / 7 + 20, 20.0f * 6 / 7 + 20,
                              40.0f};
    for (std::size_t i = 0; i < 8; ++i) EXPECT_NEAR(now[i], expected[i], 1e-4f) << i;
}

std::vector<float> Gains(unsigned int numDelays, float shape, float length, bool normalize = true) {
    std::vector<float> gains;
    Lume::GetRecommendedEarlyGains(gains, numDelays, shape, length, normalize);
    return gains;
}

// Closed forms. Red for a wrong exponent in one of the four ranges, or a normalisation other than of the mean.
TEST(EarlyGains, EnvelopeFollowsTheShape) {
    std::uint64_t positive = 0;
    const std::vector<float> flat = Gains(64, 0.5f, 60.0f);
    for (std::size_t k = 0; k < 64; ++k) positive |= std::uint64_t{flat[k] > 0.0f} << k;
    EXPECT_EQ(positive, 0xf8b61307f8389cc6u);

    const auto expectGains = [](float shape, std::vector<float> const& expected) {
        const std::vector<float> gains = Gains(4, shape, 20.0f);
        for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(gains[k], expected[k], 1e-5f) << shape << " tap " << k;
    };
    expectGains(0.25f, {-1.6f, 1.2f, 0.8f, -0.4f});
    expectGains(0.75f, {-0.4f, 0.8f, 1.2f, -1.6f});
    // Squares: 16 + 9 + 4 + 1 of 16, and roots of the line in the two inner ranges.
    expectGains(0.125f, {-64.0f / 30, 36.0f / 30, 16.0f / 30, -4.0f / 30});
    expectGains(0.875f, {-4.0f / 30, 16.0f / 30, 36.0f / 30, -64.0f / 30});
    const float roots = 2.0f + std::sqrt(3.0f) + std::sqrt(2.0f) + 1.0f;
    expectGains(0.375f, {-8 / roots, 4 * std::sqrt(3.0f) / roots, 4 * std::sqrt(2.0f) / roots, -4 / roots});
    expectGains(0.625f, {-4 / roots, 4 * std::sqrt(2.0f) / roots, 4 * std::sqrt(3.0f) / roots, -8 / roots});
    for (const float beyond : {0.0f, -3.0f}) expectGains(beyond, {-4, 0, 0, 0});
    for (const float beyond : {1.0f, 3.0f}) expectGains(beyond, {0, 0, 0, -4});
}

// Red if thinning hits other taps, its level is made up by squares, or the spread is wider than 5 %.
TEST(EarlyGains, ManyTapsAreSpreadAndThinned) {
    std::srand(3);
    const auto expectMagnitudes = [](std::vector<float> const& gains, float strong, float weak, unsigned int period) {
        float least = 9.0f, most = 0.0f;
        for (unsigned int k = 0; k < gains.size(); ++k) {
            const bool isStrong = k % period == 0 || k % period == period - 1;
            const float ratio = std::abs(gains[k]) / (isStrong ? strong : weak);
            EXPECT_NEAR(ratio, 1.0f, 0.0501f) << gains.size() << " taps, tap " << k;
            least = std::min(least, ratio);
            most = std::max(most, ratio);
        }
        EXPECT_GT(most - least, 0.04f);
    };
    const float makeup = std::sqrt(16.0f / 8.8f);
    expectMagnitudes(Gains(16, 0.5f, 10.0f), makeup, 0.1f * makeup, 4);
    expectMagnitudes(Gains(16, 0.5f, 10.0f, false), 1.0f, 0.1f, 4);
    const float halfway = std::sqrt(16.0f / (8.0f + 8.0f * 0.55f));
    expectMagnitudes(Gains(16, 0.5f, 40.0f), halfway, 0.55f * halfway, 4);
    expectMagnitudes(Gains(64, 0.5f, 60.0f), 1.0f, 1.0f, 16);
    expectMagnitudes(Gains(12, 0.5f, 10.0f), std::sqrt(12.0f / 8.4f), 0.1f * std::sqrt(12.0f / 8.4f), 3);
    for (const unsigned int n : {9u, 10u, 11u}) expectMagnitudes(Gains(n, 0.5f, 10.0f), 1.0f, 1.0f, 2);
    EXPECT_NE(Gains(9, 0.5f, 10.0f), Gains(9, 0.5f, 10.0f));
}

}  // namespace
