#include "reverb/shuffle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/channels.h"
#include "support/signals.h"

namespace {

using Lume::Shuffle;
using orvandsp::AudioBuffer;

/// What a unit impulse in one channel becomes, as a column of the mixing matrix.
std::vector<float> Column(Shuffle& shuffle, unsigned int channel) {
    AudioBuffer buffer(shuffle.GetNumInputs(), 1);
    buffer.Clear();
    buffer.Impulse(channel);
    shuffle.Process(buffer.GetChannels(), buffer.GetChannels(), 1, orvandsp::allActiveInputs);
    std::vector<float> column;
    for (unsigned int i = 0; i < buffer.GetNumChannels(); ++i) column.push_back(buffer.GetChannel(i)[0]);
    return column;
}

// Red if one kind of matrix has the wrong scale, or if a table names a channel twice: the feedback loop would then
// grow, or lose channels.
TEST(Shuffle, KeepsTheEnergyForEveryChannelCount) {
    for (unsigned int n = 2; n <= 64; ++n) {
        Shuffle shuffle(n);
        const Channels in = NoiseChannels(n, 64);
        double before = 0.0, after = 0.0;
        for (auto const& channel : in.data) before += EnergyOf(channel);
        for (auto const& channel : Processed(shuffle, in, n).data) after += EnergyOf(channel);
        EXPECT_NEAR(after / before, 1.0, 1e-5) << n;
    }
}

// Against each matrix worked out by hand. Red if the permutation runs the other way round or the groups of twelve leak.
TEST(Shuffle, EachKindIsItsMatrix) {
    Shuffle eight(8);
    const float s = 1.0f / std::sqrt(8.0f);
    EXPECT_EQ(Column(eight, 0), std::vector<float>(8, s));
    EXPECT_EQ(Column(eight, 1), (std::vector<float>{s, -s, s, -s, -s, s, -s, s}));  // signs of rows 6 1 2 3 5 4 7 0
    eight.UsePermutation(false);
    EXPECT_EQ(Column(eight, 1), (std::vector<float>{s, -s, s, -s, s, -s, s, -s}));

    Shuffle six(6);
    const float third = -2.0f / 6.0f;
    EXPECT_EQ(Column(six, 4), (std::vector<float>{third, third, third, third, 1.0f + third, third}));
    EXPECT_EQ(Column(six, 5), (std::vector<float>{third, third, third, 1.0f + third, third, third}));

    Shuffle twelve(12);
    const float h = 0.5f;
    EXPECT_EQ(Column(twelve, 0), (std::vector<float>{0, 0, h, 0, h, 0, 0, 0, 0, h, h, 0}));

    Shuffle two(2);
    const float r = 1.0f / std::sqrt(2.0f);
    EXPECT_EQ(Column(two, 1), (std::vector<float>{-r, r}));

    Shuffle three(3);  // has no table: the channels move down by one
    const float t = -2.0f / 3.0f;
    EXPECT_EQ(Column(three, 0), (std::vector<float>{t, t, 1.0f + t}));
}

}  // namespace
