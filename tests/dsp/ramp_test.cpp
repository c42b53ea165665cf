#include "dsp/ramp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using orvandsp::Ramp;

// Red if the length is computed in the wrong order or rounded, or if a block's slope is the plain increment: pieces run
// exactly from the value at their start to the value at their end, so that neighbours share a value.
TEST(Ramp, PiecesTouchAndEndAtTheTarget) {
    Ramp ramp;
    ramp.Start(1.0f, 30.0f);
    EXPECT_EQ(ramp.total, 1323u);

    std::vector<float> out(1400);
    ramp.Process(out.data(), 500);
    ramp.Process(out.data() + 500, 900);
    EXPECT_EQ(out[0], 0.0f);
    EXPECT_EQ(out[499], out[500]);
    EXPECT_NEAR(out[499], 500.0f / 1323.0f, 1e-6f);
    EXPECT_NEAR(out[1] - out[0], 1.0f / 1323.0f * 500.0f / 499.0f, 1e-8f);
    for (std::size_t i = 1323; i < 1400; ++i) EXPECT_EQ(out[i], 1.0f) << i;

    // Red if somebody guards the division: a single-sample piece has no slope, and its sample is not a number.
    Ramp single;
    single.Start(1.0f, 30.0f);
    single.Process(out.data(), 1);
    EXPECT_TRUE(std::isnan(out[0]));
    EXPECT_NEAR(single.current, 1.0f / 1323.0f, 1e-8f);
}

TEST(Ramp, ZeroTimeJumpsAndNegativeTimeJumpsAtTheNextBlock) {
    Ramp ramp;
    for (const float time : {0.0f, std::nanf("")}) {
        ramp.Start(2.0f, 30.0f);
        ramp.Start(3.0f, time);
        EXPECT_EQ(ramp.total, 0u);
        EXPECT_EQ(ramp.current, 3.0f);
    }
    ramp.Start(5.0f, -1.0f);
    EXPECT_EQ(ramp.current, 3.0f);
    float out[4];
    ramp.Process(out, 4);
    EXPECT_EQ(out[0], 5.0f);
}

// Red if an ended ramp restarts with a slope, or if the target moves with the rate.
TEST(Ramp, AnotherSampleRateKeepsTheEnd) {
    Ramp ramp;
    ramp.Start(1.0f, 30.0f);
    ramp.Advance(1223);
    ASSERT_EQ(ramp.remaining, 100);
    ramp.SetSamplerate(88200.0f);
    EXPECT_EQ(ramp.remaining, 200);
    EXPECT_EQ(ramp.total, 2646u);
    ramp.Advance(300);
    EXPECT_NEAR(ramp.current, 1.0f, 1e-5f);

    ramp.current = ramp.target;
    ramp.SetSamplerate(44100.0f);
    EXPECT_EQ(ramp.remaining, 1323);
    EXPECT_EQ(ramp.increment, 0.0f);
}

}  // namespace
