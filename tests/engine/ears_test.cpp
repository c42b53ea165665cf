#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "dsp/orvan_dsp_exception.h"
#include "engine_rig.h"
#include "hrtf/hrtf.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/set_file.h"
#include "support/allocation_count.h"
#include "support/temporary_file.h"

namespace {

std::unique_ptr<Lume::Hrtf> FlatSet(float gain, std::uint32_t numChannels = 2) {
    const TemporaryFile file(".hrtf", FlatSetFile(gain, numChannels));
    return std::make_unique<Lume::Hrtf>(file.name);
}

float Tone(unsigned int, std::size_t t) {
    return std::sin(2.0f * std::numbers::pi_v<float> * 250.0f / 48000.0f * static_cast<float>(t));
}

/// The direct sound alone on headphones.
struct Headphones : EngineRig {
    Headphones() : EngineRig(1, 2, 2) { engine.SetDirectGain(0.0f); }
};

bool AllZero(EngineRig::Recording const& recording) {
    for (auto const& channel : recording)
        if (std::any_of(channel.begin(), channel.end(), [](float x) { return !(x == 0.0f); })) return false;
    return true;
}

}  // namespace

// Red if the exchange tears the sound, sends filters through their starting state, or leaves the old ears in.
TEST(Ears, ExchangeIsASmoothFadeToWhatTheNewSetGives) {
    Headphones rig;
    ASSERT_TRUE(rig.engine.SetHrtf(FlatSet(1.0f)));
    rig.Run(24000, Tone);
    const float before = rig.Run(1920, Tone)[0].back();
    auto ears = rig.engine.MakeEars(FlatSet(0.25f));
    ASSERT_TRUE(ears);
    const long allocations = AllocationCount();
    ASSERT_TRUE(rig.engine.ExchangeEars(ears));
    EXPECT_EQ(AllocationCount(), allocations);
    EXPECT_FALSE(ears);
    EXPECT_FALSE(rig.engine.ExchangeEars(ears)) << "one fade at a time";
    const auto during = rig.Run(1920, Tone);
    const auto after = rig.Run(1920, Tone);

    Headphones fresh;
    ASSERT_TRUE(fresh.engine.SetHrtf(FlatSet(0.25f)));
    fresh.Run(24000 + 2 * 1920, Tone);
    const auto wanted = fresh.Run(1920, Tone);
    for (std::size_t i = 0; i < wanted[0].size(); ++i) ASSERT_NEAR(after[0][i], wanted[0][i], 1e-4f) << i;

    float largestStep = std::abs(during[0].front() - before);
    for (std::size_t i = 1; i < during[0].size(); ++i)
        largestStep = std::max(largestStep, std::abs(during[0][i] - during[0][i - 1]));
    // The steepest that the tone itself is at the higher of the two levels, and a hundredth for the fade.
    EXPECT_LT(largestStep, 2.0f * std::numbers::pi_v<float> * 250.0f / 48000.0f * 0.7072f * 1.01f);

    ears = rig.engine.MakeEars(FlatSet(0.5f));
    ASSERT_TRUE(rig.engine.ExchangeEars(ears));
    EXPECT_TRUE(ears) << "those of the beginning come back, to be deleted elsewhere";
}

// Red if ears are made for an engine that has none, or from a set that isn't for two.
TEST(Ears, AreRefusedWhereThereAreNone) {
    EngineRig loudspeakers(1, 4, 2);
    EXPECT_FALSE(loudspeakers.engine.MakeEars(FlatSet(1.0f)));
    EXPECT_FALSE(Headphones().engine.MakeEars(FlatSet(1.0f, 1)));
}

// A sample that isn't finite spreads through the whole late field. Red if anything is left that could still hold it:
// the air filters do after Clear.
TEST(Silence, NothingThatEverCameInIsHeardAgain) {
    for (const unsigned int speakers : {2u, 6u})
        for (const float bad : {std::numeric_limits<float>::quiet_NaN(), 3.4e38f, 1.0f}) {
            EngineRig rig(2, speakers, 8);
            for (auto const set : {&OpenEngine::SetDirectGain, &OpenEngine::SetEarlyGain, &OpenEngine::SetClusterGain,
                                   &OpenEngine::SetReverbGain})
                (rig.engine.*set)(0.0f);
            rig.Silence(0.25);
            rig.Run(24000, [=](unsigned int, std::size_t t) { return t % 3000 == 7 ? bad : 0.0f; });
            rig.engine.Silence();
            EXPECT_TRUE(AllZero(rig.Silence(2.0))) << speakers << " loudspeakers, " << bad;
        }
}

// Red if a mistyped name passes for the built-in set.
TEST(Ears, OfAFileThatIsNotThereAreAnError) {
    Headphones rig;
    const TemporaryFile text(".txt", "no set");
    for (std::string const& name : {std::string("/nonexistent/typo.xyz"), std::string("no.hrtf"), text.name})
        EXPECT_THROW(rig.engine.LoadHrtf(name.c_str()), orvandsp::OrvanDspException) << name;
    EXPECT_TRUE(rig.engine.LoadHrtf("kemar"));
}
