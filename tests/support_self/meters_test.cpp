#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "support/clicks.h"
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

using Recording = std::vector<std::vector<float>>;

constexpr double rate = 48000.0;
constexpr double tone = 1000.0;

std::vector<float> Tone() {
    return MakeSine(tone, rate, 60000, 0.5);
}

// Red if the fades, the band's edges or the pairing of channels leave something of their own.
TEST(MeasureToneResidual, TonesAndSlowChangesLeaveNothing) {
    std::vector<float> modulated = Tone();
    for (std::size_t t = 0; t < modulated.size(); ++t) {
        const double seconds = static_cast<double>(t) / rate;
        // A change of level in 100 ms, a tremolo and a vibrato.
        const double level = 0.3 + 0.2 * std::tanh((seconds - 0.6) / 0.02) + 0.1 * std::sin(250.0 * seconds);
        const double phase = 2.0 * std::numbers::pi * tone * seconds + 0.5 * std::sin(60.0 * seconds);
        modulated[t] = static_cast<float>(level * std::sin(phase));
    }
    const std::vector<Recording> recordings = {{Tone()}, {modulated, Tone()}, {Tone(), Tone(), modulated}};
    for (Recording const& channels : recordings) EXPECT_LT(MeasureToneResidual(channels, rate, tone).peakDb, -100.0);
}

// A click of one sample keeps nearly its whole height: 0.4 of 24 kHz are taken out of it. Red if the reference isn't
// the loudest tone, a channel is forgotten, or the place is wrong.
TEST(MeasureToneResidual, ClicksShowWithTheirHeightAndPlace) {
    for (std::size_t clicked = 0; clicked < 3; ++clicked) {
        Recording channels(3, Tone());
        for (float& x : channels[clicked]) x *= 0.1f;
        channels[clicked][25000] += 0.5f * 0.003f;
        const ToneResidual residual = MeasureToneResidual(channels, rate, tone);
        EXPECT_NEAR(residual.peakDb, 20.0 * std::log10(0.003 * (1.0 - 0.41 / 24.0)), 0.05) << clicked;
        EXPECT_EQ(residual.peakSeconds, 25000 / rate) << clicked;
    }
}

}  // namespace
