#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/signals.h"

namespace {

TEST(Signals, LevelsAreKnown) {
    EXPECT_NEAR(LevelDb(MakeSine(1000.0, 48000.0, 48000)), -3.0103, 1e-4);
    EXPECT_NEAR(LevelDb(MakeSine(1000.0, 48000.0, 48000, 0.1)), -23.0103, 1e-4);
    EXPECT_EQ(EnergyOf(MakeImpulse(100, 99)), 1.0);
    EXPECT_TRUE(std::isinf(LevelDb(std::vector<float>(8, 0.0f))));
    EXPECT_NEAR(LevelDb(MakeNoise(1, 100000, 0.5f)), -10.79, 0.03);  // uniform: 1/sqrt(3) of the amplitude
    EXPECT_EQ(MakeNoise(5, 3), MakeNoise(5, 3));
}

}  // namespace
