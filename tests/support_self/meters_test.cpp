#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/decay.h"
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

// Red if the integral runs forwards, if amplitudes are taken for energies, or if a band lets its neighbours through.
TEST(MeasureDecay, FindsTheDecayOfEachBand) {
    constexpr double rate = 44100.0;
    constexpr std::size_t length = 88200;
    const auto decaying = [&](std::vector<float> signal, double seconds) {
        for (std::size_t n = 0; n < length; ++n)
            signal[n] *= static_cast<float>(std::pow(10.0, -3.0 * static_cast<double>(n) / (rate * seconds)));
        return signal;
    };
    std::vector<std::vector<float>> channels = {
        decaying(MakeNoise(1, length), 1.2), decaying(MakeNoise(2, length), 1.2), decaying(MakeNoise(3, length), 1.2)};
    for (const double centre : {250.0, 1000.0, 4000.0, 8000.0})
        EXPECT_NEAR(MeasureDecay(channels, rate, centre), 1.2, 0.03) << centre;

    std::vector<float> two = decaying(MakeSine(500.0, rate, length), 1.0);
    const std::vector<float> high = decaying(MakeSine(2000.0, rate, length), 0.4);
    for (std::size_t n = 0; n < length; ++n) two[n] += high[n];
    channels = {two};
    EXPECT_NEAR(MeasureDecay(channels, rate, 500.0), 1.0, 0.01);
    EXPECT_NEAR(MeasureDecay(channels, rate, 2000.0), 0.4, 0.01);

    channels = {MakeSine(500.0, rate, 1000)};
    EXPECT_TRUE(std::isnan(MeasureDecay(channels, rate, 500.0))) << "a signal that doesn't decay has no decay time";
}

}  // namespace
