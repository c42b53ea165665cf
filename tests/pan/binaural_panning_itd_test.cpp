#include "pan/binaural_panning_itd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include "pan/panning_support.h"
#include "support/allocation_count.h"
#include "support/signals.h"

namespace {

using Lume::BinauralPanningITD;
using orvandsp::allActiveInputs;

struct Ear {
    float gain;     // sum of the impulse response: an allpass passes 0 Hz as it is
    float delayMs;  // its centre of gravity
};

/// What a panner does to an impulse once all glides are over.
std::array<Ear, 2> Measure(BinauralPanningITD& panner) {
    Channels silence(1, 4096, 0.0f), impulse(1, 512, 0.0f), out(2, 4096, 0.0f);
    panner.SetMaxBlockSize(4096);
    panner.Process(out.pointers.data(), silence.pointers.data(), 4096, allActiveInputs);
    impulse.data[0][0] = 1.0f;
    panner.Process(out.pointers.data(), impulse.pointers.data(), 512, allActiveInputs);
    std::array<Ear, 2> ears{};
    for (std::size_t e = 0; e < 2; ++e) {
        float sum = 0.0f, moment = 0.0f;
        for (std::size_t n = 0; n < 512; ++n) {
            sum += out.data[e][n];
            moment += static_cast<float>(n) * out.data[e][n];
        }
        ears[e] = {sum, moment / sum / 44.1f};
    }
    return ears;
}

// Red if the sides are mixed up, if the effect doesn't grow to a metre and stop there, or if the height isn't seen.
TEST(BinauralPanningITD, DelaysAndWeakensTheFarEar) {
    BinauralPanningITD panner(1, 2);
    const auto expect = [&](Lume::CartesianVector const& position, float v) {
        panner.SetSourcePosition(0, position, false);
        const auto [left, right] = Measure(panner);
        EXPECT_NEAR(left.gain, 0.70710678f - v, 1e-3f) << position.x << " " << position.y << " " << position.z;
        EXPECT_NEAR(right.gain, 0.70710678f + v, 1e-3f) << position.x;
        EXPECT_NEAR(left.delayMs, 1.0f + v, 0.01f) << position.x;
        EXPECT_NEAR(right.delayMs, 1.0f - v, 0.01f) << position.x;
    };
    expect(At(90.0, 0.0, 2.0), 0.35f);
    expect(At(90.0, 0.0, 0.5), 0.175f);
    expect(At(-90.0), -0.35f);
    expect(At(30.0, 60.0), 0.35f * 0.25f);
    expect(At(150.0, -60.0), 0.35f * 0.25f);
    expect(At(77.0, 90.0), 0.0f);
    expect({0.0f, 0.0f, 0.0f}, 0.0f);
    panner.SetListenerHeadRadius(1.0f);
    expect(At(90.0), 0.35f);
}

// Red if adding replaces, if several inputs aren't the sum of each, if an output that is an input is read after it was
// written, or if a block allocates.
TEST(BinauralPanningITD, SeveralInputsAddUpAlsoInPlace) {
    BinauralPanningITD both(2, 2), first(1, 2), second(1, 2);
    for (auto* panner : {&both, &first, &second}) panner->Configure(48000.0f, 64, true);
    for (const bool flag : {true, false}) {
        both.SetSourcePosition(0, At(flag ? 10.0 : 40.0), flag);
        first.SetSourcePosition(0, At(flag ? 10.0 : 40.0), flag);
        both.SetSourcePosition(1, At(-70.0), flag);
        second.SetSourcePosition(0, At(-70.0), flag);
    }
    Channels inPlace(2, 2048, 0.0f), expected(2, 2048, 0.0f), once(2, 64, 0.0f);
    for (std::uint32_t c : {0u, 1u}) std::ranges::copy(MakeNoise(c + 1, 2048), inPlace.pointers[c]);
    for (std::size_t i = 0; i < 2048; i += 64) {
        auto in = inPlace.From(i), sum = expected.From(i);
        first.ProcessAdding(sum.data(), &in[0], 64, allActiveInputs);
        second.Process(once.pointers.data(), &in[1], 64, allActiveInputs);
        for (std::size_t e = 0; e < 2; ++e)
            for (std::size_t n = 0; n < 64; ++n) sum[e][n] += once.data[e][n];
        const long allocations = AllocationCount();
        both.Process(in.data(), in.data(), 64, allActiveInputs);
        EXPECT_EQ(AllocationCount(), allocations);
    }
    EXPECT_EQ(inPlace.data, expected.data);
    EXPECT_GT(LevelDb(inPlace.data[1]), -10.0);
}

// Red if somebody tidies up: a single input that isn't active leaves the outputs alone, several clear them.
TEST(BinauralPanningITD, InactiveInputs) {
    BinauralPanningITD one(1, 2), two(2, 2);
    const short inactive[] = {0, 0};
    Channels in(2, 64, 1.0f), out(2, 64, 5.0f);
    one.Process(out.pointers.data(), in.pointers.data(), 64, inactive);
    EXPECT_EQ(out.data[0][63], 5.0f);
    two.Process(out.pointers.data(), in.pointers.data(), 64, inactive);
    EXPECT_EQ(out.data[0][63], 0.0f);
    EXPECT_EQ(out.data[1][0], 0.0f);

    std::unique_ptr<Lume::Pan> made(Lume::Pan::factory(2, 2, "binaural", "early"));
    EXPECT_NE(dynamic_cast<BinauralPanningITD*>(made.get()), nullptr);
    made.reset(Lume::Pan::factory(2, 3, "binaural", "early"));
    EXPECT_EQ(made->GetNumInputs(), 0u);
}

}  // namespace
