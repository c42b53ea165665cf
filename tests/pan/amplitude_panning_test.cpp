#include "pan/amplitude_panning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "pan/panning_support.h"
#include "support/allocation_count.h"

namespace {

using Lume::CartesianVector;

constexpr int cycle = 1323;  // 30 ms at 44.1 kHz

/// Output j gets the gain x + j * y of each source.
class PlainPanning : public Lume::AmplitudePanning {
public:
    using AmplitudePanning::AmplitudePanning;
    void convert(CartesianVector const& position, float* gains, unsigned int) override {
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

// Red if the slope is that of the whole cycle: a block's last sample has the gain of the next block's first.
TEST(AmplitudePanning, NeighbouringBlocksShareAGain) {
    PlainPanning panner(1, 1);
    panner.SetSourcePosition(0, {1.0f, 0.0f, 0.0f}, false);
    const std::vector<float> gain = Listen(panner, 2 * cycle, 147);  // 9 blocks a cycle
    EXPECT_NEAR(gain[cycle + 146], 147.0f / cycle, 1e-6f);
    EXPECT_EQ(gain[cycle + 147], 147.0f / cycle);
    EXPECT_NEAR(gain[cycle + 1] - gain[cycle], 147.0f / cycle / 146.0f, 1e-7f);
}

// Red if an output is written before all inputs of a stretch are read, if an inactive input is read (its pointer is
// null), or if Process and ProcessAdding mix differently.
TEST(AmplitudePanning, WorksInPlaceAndReadsOnlyActiveInputs) {
    constexpr std::size_t samples = 3000;
    const short active[] = {0, 1, 0, 1};
    Uniform uniform(7);
    Channels plainIn(4, samples, 0.0f), plainOut(3, samples, 9.0f), added(3, samples, 0.0f), inPlace(4, samples, 0.0f);
    for (std::size_t i : {1u, 3u}) {
        for (float& x : plainIn.data[i]) x = static_cast<float>(uniform(-1.0, 1.0));
        inPlace.data[i] = plainIn.data[i];
    }
    PlainPanning a(4, 3), b(4, 3), c(4, 3);
    for (PlainPanning* panner : {&a, &b, &c})
        for (unsigned int i = 0; i < 4; ++i)
            panner->SetSourcePosition(i, {0.1f + static_cast<float>(i), -0.3f, 0.0f}, false);
    for (std::size_t k = 0; k < samples; k += 500) {
        std::vector<float*> ins = plainIn.From(k);
        ins[0] = ins[2] = nullptr;
        a.Process(plainOut.From(k).data(), ins.data(), 500, active);
        b.ProcessAdding(added.From(k).data(), ins.data(), 500, active);
        c.Process(inPlace.From(k).data(), inPlace.From(k).data(), 500, active);
    }
    for (std::size_t j = 0; j < 3; ++j) {
        EXPECT_EQ(plainOut.data[j], added.data[j]);
        EXPECT_EQ(plainOut.data[j], inPlace.data[j]);
    }
}

// Red if outputs that are mixed at once get other bits than one by one.
TEST(AmplitudePanning, OutputsDoNotDependOnEachOther) {
    constexpr unsigned int outputs = 7;
    constexpr std::size_t samples = 4000;
    Uniform uniform(11);
    Channels in(2, samples, 0.0f), together(outputs, samples, 0.0f), single(1, samples, 0.0f);
    for (auto& channel : in.data)
        for (float& x : channel) x = static_cast<float>(uniform(-1.0, 1.0));
    const CartesianVector sources[] = {{-0.7f, 0.3f, 0.0f}, {0.2f, -0.1f, 0.0f}};
    PlainPanning all(2, outputs);
    all.SetSourcePositions(sources);
    for (std::size_t k = 0; k < samples; k += 200)
        all.Process(together.From(k).data(), in.From(k).data(), 200, orvandsp::allActiveInputs);
    for (unsigned int j = 0; j < outputs; ++j) {
        PlainPanning one(2, 1);
        for (unsigned int i = 0; i < 2; ++i)
            one.SetSourcePosition(i, {sources[i].x + static_cast<float>(j) * sources[i].y, 0.0f, 0.0f}, false);
        for (std::size_t k = 0; k < samples; k += 200)
            one.Process(single.From(k).data(), in.From(k).data(), 200, orvandsp::allActiveInputs);
        EXPECT_EQ(together.data[j], single.data[0]) << "output " << j;
    }
}

TEST(AmplitudePanning, WithoutActiveInputProcessClearsAndStandsStillAndAddingGoesOn) {
    const short none[] = {0};
    for (const bool adding : {false, true}) {
        PlainPanning panner(1, 1);
        panner.SetSourcePosition(0, {1.0f, 0.0f, 0.0f}, false);
        Channels out(1, 2 * cycle, 9.0f);
        float* unread[] = {nullptr};
        if (adding)
            panner.ProcessAdding(out.pointers.data(), unread, 2 * cycle, none);
        else
            panner.Process(out.pointers.data(), unread, 2 * cycle, none);
        EXPECT_EQ(out.data[0].back(), adding ? 9.0f : 0.0f);
        EXPECT_EQ(Listen(panner, 1, 1)[0], adding ? 1.0f : 0.0f);
    }
}

// Red if a silent pair of source and output is multiplied out when adding: zero times infinity is no number.
TEST(AmplitudePanning, SilentPairsAddNothing) {
    PlainPanning panner(1, 1);
    Channels in(1, 8, std::numeric_limits<float>::infinity()), out(1, 8, 0.25f);
    panner.ProcessAdding(out.pointers.data(), in.pointers.data(), 8, orvandsp::allActiveInputs);
    EXPECT_EQ(out.data[0][7], 0.25f);
    panner.Process(out.pointers.data(), in.pointers.data(), 8, orvandsp::allActiveInputs);
    EXPECT_TRUE(std::isnan(out.data[0][7]));
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

// Red if a cycle without samples stops the mixing, or if one whose end has moved behind its position doesn't end at
// once.
TEST(AmplitudePanning, EveryInterpolationTimeMovesOn) {
    for (const float milliseconds : {0.0f, -5.0f, std::nanf(""), 1.0f, 1e30f}) {
        PlainPanning panner(1, 1);
        panner.SetSourcePosition(0, {1.0f, 0.0f, 0.0f}, false);
        Listen(panner, 1000, 64);
        panner.SetInterpolationTime(milliseconds);
        const std::vector<float> gain = Listen(panner, 200, 64);
        EXPECT_EQ(gain[44], milliseconds < 1e30f || std::isnan(milliseconds) ? 1.0f : 0.0f);
    }
}

TEST(AmplitudePanning, ProcessAllocatesNothing) {
    PlainPanning panner(2, 5);
    Channels in(2, 256, 1.0f), out(5, 256, 0.0f);
    const long before = AllocationCount();
    for (int block = 0; block < 20; ++block) {
        panner.SetSourcePosition(1, {static_cast<float>(block), 1.0f, 0.0f}, false);
        panner.Process(out.pointers.data(), in.pointers.data(), 256, orvandsp::allActiveInputs);
        panner.ProcessAdding(out.pointers.data(), in.pointers.data(), 256, orvandsp::allActiveInputs);
    }
    EXPECT_EQ(AllocationCount(), before);
}

}  // namespace
