#include "pan/amplitude_panning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "pan/panning_support.h"

namespace {

constexpr int cycle = 1323;  // 30 ms at 44.1 kHz

/// Output j gets the gain x + j * y of each source.
class PlainPanning : public Lume::AmplitudePanning {
public:
    using AmplitudePanning::AmplitudePanning;
    void convert(Lume::CartesianVector const& position, float* gains, unsigned int) override {
        for (unsigned int j = 0; j < numOutputs; ++j) gains[j] = position.x + static_cast<float>(j) * position.y;
    }
};

/// The gain that a panner applies to one steady source over time, in blocks of a given size.
std::vector<float> Listen(Lume::Pan& panner, std::size_t samples, std::size_t block) {
    Channels in(1, samples, 1.0f), out(1, samples, 9.0f);
    for (std::size_t k = 0; k < samples; k += block)
        panner.Process(out.From(k).data(), in.From(k).data(), std::min(block, samples - k), orvandsp::allActiveInputs);
    return out.data[0];
}

// Red if a request is heard before the next cycle, if the slide isn't straight, or if it ends anywhere but at the
// target; for blocks that are shorter and longer than a cycle and than the stretch that is mixed at once.
TEST(AmplitudePanning, GainsSlideInTheCycleAfterTheRequest) {
    for (const std::size_t block : {1u, 64u, 100u, 5000u}) {
        PlainPanning panner(1, 1);
        panner.SetSourcePosition(0, {0.5f, 0.0f, 0.0f}, false);
        panner.SetSourcePosition(0, {0.8f, 0.0f, 0.0f}, false);  // the last request of a cycle counts
        const std::vector<float> gain = Listen(panner, 4 * cycle, block);
        for (int k = 0; k < 4 * cycle; ++k) {
            const float straight = 0.8f * std::clamp(static_cast<float>(k - cycle) / cycle, 0.0f, 1.0f);
            // A chunk is stretched by a sample, from its first gain at its first sample to its last at its last.
            EXPECT_NEAR(gain[static_cast<std::size_t>(k)], straight, 1e-5f + 0.8f / cycle) << "block " << block;
        }
        EXPECT_EQ(gain[cycle - 1], 0.0f);
        EXPECT_EQ(gain[2 * cycle], 0.8f);
    }
}

TEST(AmplitudePanning, WithoutActiveInputProcessClearsAndStandsStillAndAddingGoesOn) {
    const short none[] = {0};
    for (const bool adding : {false, true}) {
        PlainPanning panner(1, 1);
        panner.SetSourcePosition(0, {1.0f, 0.0f, 0.0f}, false);
        Channels out(1, cycle, 9.0f);
        float* unread[] = {nullptr};
        if (adding)
            panner.ProcessAdding(out.pointers.data(), unread, cycle, none);
        else
            panner.Process(out.pointers.data(), unread, cycle, none);
        EXPECT_EQ(out.data[0].back(), adding ? 9.0f : 0.0f);
        EXPECT_NEAR(Listen(panner, cycle, 64).back(), adding ? 1.0f : 0.0f, 1e-3f);
    }
}

// Red if the elapsed part of a cycle is lost or its length stays in samples.
TEST(AmplitudePanning, AnotherSampleRateKeepsTimes) {
    PlainPanning panner(1, 1);
    panner.SetSourcePosition(0, {1.0f, 0.0f, 0.0f}, false);
    Listen(panner, cycle - 20, 64);
    panner.SetSamplerate(88200.0f);
    const std::vector<float> gain = Listen(panner, 3000, 1);
    EXPECT_EQ(gain[40], 0.0f);
    EXPECT_NEAR(gain[41], 1.0f / (2 * cycle), 1e-6f);
    EXPECT_LT(gain[2 * cycle + 39], 1.0f);
    EXPECT_EQ(gain[2 * cycle + 40], 1.0f);
}

}  // namespace
