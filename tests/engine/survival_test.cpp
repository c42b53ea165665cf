#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "engine/controls.h"
#include "engine/engine_rig.h"
#include "support/signals.h"

// What an engine is fed and told by those who don't check: nothing that isn't finite may get inside, as it would stay.

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
const float nan = std::nanf("");

/// Sets every control to its default: until then the layers are silent.
void Sound(EngineRig& rig) {
    for (Control const& control : AllControls())
        if (control.name != "loudspeaker ring") control.set(rig.engine, control.usual);
}

bool IsFinite(EngineRig::Recording const& recording) {
    return std::ranges::all_of(recording, [](auto const& channel) {
        return std::ranges::all_of(channel, [](float x) { return std::isfinite(x); });
    });
}

// Red if a sample that isn't finite, or grows to one on its way, gets past the door, if the door cleans another channel
// or writes into the caller's arrays, or if it changes a sample that is well.
TEST(EngineSurvival, BadSamplesCountAsZero) {
    for (const float bad : {nan, infinity, -infinity, 3.4e38f})
        for (const unsigned int numSpeakers : {2u, 5u}) {
            EngineRig fed(3, numSpeakers, 8), clean(3, numSpeakers, 8);
            Sound(fed);
            Sound(clean);
            const std::vector<float> noise = MakeNoise(3, 8192);
            const auto source = [&](float replacement) {
                return [&, replacement](unsigned int c, std::size_t t) {
                    return c == 1 && t % 1000 == 77 ? replacement : noise[(t + 500 * c) % noise.size()];
                };
            };
            const EngineRig::Recording heard = fed.Run(48000, source(bad));
            EXPECT_EQ(heard, clean.Run(48000, source(0.0f))) << bad;
            fed.in[1][5] = bad;
            fed.engine.Process(fed.outputs.data(), fed.inputs.data(), fed.block, fed.activeInputs);
            EXPECT_FALSE(fed.in[1][5] == 0.0f);
        }
}

// Red if a setter lets through what its layer can't forget, or stores it.
TEST(EngineSurvival, SettersIgnoreWhatIsNoNumber) {
    for (const unsigned int numSpeakers : {2u, 5u})
        for (Control const& control : AllControls()) {
            EngineRig told(2, numSpeakers, 8), plain(2, numSpeakers, 8);
            const auto noise = [&](unsigned int c, std::size_t t) {
                return std::sin(0.1f * static_cast<float>((c + 1) * (t % 1000)));
            };
            Sound(told);
            Sound(plain);
            told.Run(2048, noise);
            plain.Run(2048, noise);
            if (control.name != "infinite") control.set(told.engine, nan);
            EXPECT_EQ(told.Run(4096, noise), plain.Run(4096, noise)) << control.name;
            for (const float wild : {infinity, -infinity, 1e30f, -1e30f, 0.0f, -1.0f, 1e-40f}) {
                if (control.name.find("source") == 0 || control.name == "loudspeaker ring") break;
                control.set(told.engine, wild);
                told.Run(1024, noise);
                control.set(told.engine, control.usual);
                EXPECT_TRUE(IsFinite(told.Run(1024, noise))) << control.name << " " << wild;
            }
        }
}

// Red if places beyond all measure are squared, if loudspeakers in one direction make gains that aren't numbers, or if
// an angle of the head that isn't one counts.
TEST(EngineSurvival, PlacesBeyondMeasureAreHeard) {
    EngineRig rig(2, 3, 8);
    for (Lume::Orientation const& head : {Lume::Orientation{nan, 0, 0}, {0, infinity, 0}, {0, 0, nan}}) {
        rig.engine.SetOrientation(head);
        EXPECT_EQ(rig.engine.GetOrientation(), Lume::Orientation{});
    }
    rig.engine.SetDirectGain(0.0f);
    const auto constant = [](unsigned int, std::size_t) { return 1.0f; };
    const Lume::CartesianVector far = {1.0f, 1e30f, -infinity};
    rig.engine.SetSourcePosition(0, far);
    EXPECT_TRUE(IsFinite(rig.Run(9600, constant)));
    for (std::vector<Lume::CartesianVector> const& speakers :
         {std::vector<Lume::CartesianVector>{far, {1e30f, 1, 0}, {0, -1e30f, 0}},
          {At(10), At(10, 0.0, 2), At(10, 0.0, 4)},
          {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}},
          {{nan, 0, 0}, {0, nan, 0}, {0, 0, nan}}}) {
        rig.engine.SetSpeakersPositions(speakers.data());
        for (int i = 36; i > 0; --i) {
            rig.engine.SetSourcePosition(1, At(10.0 * i, 0.0, 2.0));
            ASSERT_TRUE(IsFinite(rig.Run(1600, constant))) << i;
        }
        if (speakers[0].y != 0.0f) {
            EXPECT_GT(Energy(rig.Run(1600, constant)), 1.0);
        }
    }
}

// Odd rates leave a ramp with a single sample at the end of a block. Red if its gain isn't a number.
TEST(EngineSurvival, EveryRateAndBlockIsFinite) {
    const std::vector<float> noise = MakeNoise(5, 8192);
    for (const float rate : {8000.0f, 11025.0f, 22050.0f, 44100.0f, 46967.0f, 48048.0f, 88200.0f, 176400.0f, 192000.0f})
        for (const unsigned int block : {1u, 2u, 3u, 5u, 11u, 16u, 23u, 32u, 64u, 115u, 480u, 1024u, 8192u})
            for (const unsigned int numSpeakers : {2u, 6u}) {
                if (block < 16 && numSpeakers == 6) continue;  // no ramps of single samples there
                EngineRig rig(1, numSpeakers, 2, rate, block);
                Sound(rig);
                for (const double azimuth : {40.0, -80.0}) {
                    rig.engine.SetSourcePosition(0, At(azimuth, 0.0, 2.0));
                    ASSERT_TRUE(IsFinite(rig.Run(rig.Samples(0.05),
                                                 [&](unsigned int, std::size_t t) { return noise[t % noise.size()]; })))
                        << rate << " Hz, block " << block << ", " << numSpeakers;
                }
            }
}

// Red if the time to wait misses a block of the room, the slowest band, or the loops' chunk.
TEST(EngineSurvival, TheTailIsOverWhenItSays) {
    for (const float decibels : {60.0f, 90.0f}) {
        EngineRig rig(1, 6, 8);
        for (Control const& control : AllControls()) control.set(rig.engine, control.usual);
        rig.engine.SetDecayTime(0.6f);
        rig.engine.SetRelativeDecayLow(1.5f);
        rig.Settle();
        const double loud = Energy(rig.ImpulseResponse(0.1)) / 0.1;
        const auto wait = static_cast<double>(rig.engine.GetTailLength(decibels));
        rig.Silence(wait - 0.1);
        const double left = Energy(rig.Silence(0.1)) / 0.1;
        EXPECT_LT(10.0 * std::log10(left / loud), -static_cast<double>(decibels));
        EXPECT_LT(wait, 0.6 * 1.5 * static_cast<double>(decibels) / 60.0 * 1.1 + 1.0);
    }
    EngineRig rig(1, 2, 8);
    rig.engine.SetInfinite(true);
    EXPECT_TRUE(std::isinf(rig.engine.GetTailLength()));
}

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
