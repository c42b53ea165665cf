#include <gtest/gtest.h>

#include <random>

#include "engine/controls.h"
#include "engine/engine_rig.h"
#include "support/signals.h"

namespace {

// Every control jumps about in its range while noise plays. Red if a control can drive the engine to infinity or not a
// number, or leave it in a state that doesn't end.
void Torment(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals, double seconds,
             unsigned int seed) {
    SCOPED_TRACE(testing::Message() << numSources << " " << numSpeakers << " " << numInternals << " seed " << seed);
    EngineRig rig(numSources, numSpeakers, numInternals);
    std::mt19937 generator(seed);
    const auto uniform = [&] { return static_cast<float>(generator()) * 0x1p-32f; };
    std::vector<Control> const& controls = AllControls();
    const std::vector<float> noise = MakeNoise(seed, 1 << 16, 1.0f);

    float peak = 0.0f;
    bool finite = true;
    const auto watch = [&](EngineRig::Recording const& recording) {
        for (auto const& channel : recording)
            for (const float x : channel) {
                finite = finite && std::isfinite(x);
                peak = std::max(peak, std::fabs(x));
            }
    };
    for (double t = 0.0; t < seconds && finite; t += 0.02) {
        Control const& control = controls[generator() % controls.size()];
        const float share = uniform();
        control.set(rig.engine, control.low + share * (control.high - control.low));
        const std::size_t start = generator() % noise.size();
        watch(rig.Run(960, [&](unsigned int c, std::size_t i) { return noise[(start + 977 * c + i) % noise.size()]; }));
    }
    EXPECT_TRUE(finite);
    // 10 and 30 dB in each of two shelves in a row, and 30 dB in a layer, are 110 dB. A shelf whose crossovers jump to
    // 20 Hz takes the slope of a loud signal for the start of a thump, up to 50 dB above it.
    EXPECT_LT(peak, 1e9f);
    EXPECT_GT(peak, 1e-3f);

    for (Control const& control : controls) control.set(rig.engine, control.usual);
    rig.engine.SetDecayTime(0.3f);
    // Long, because a filter between bands that lie far apart has a slow pole near 0 Hz.
    rig.Silence(8.0);
    EXPECT_LT(Energy(rig.Silence(0.1)), 1e-20);
}

TEST(EngineStress, AnyChangesLeaveTheOutputBounded) {
    Torment(2, 5, 8, 15.0, 1);
    Torment(7, 3, 9, 5.0, 2);
    Torment(3, 2, 8, 5.0, 5);
    Torment(1, 64, 16, 3.0, 3);
    Torment(64, 4, 2, 3.0, 4);
}

TEST(EngineStress, SLOW_TenMinutes) {
    for (unsigned int seed = 10; seed < 15; ++seed) Torment(1 + seed % 3, 6, 4 + seed % 13, 120.0, seed);
}

}  // namespace
