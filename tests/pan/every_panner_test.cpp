#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pan/binaural/binaural_panning_itd.h"
#include "pan/panning_support.h"
#include "support/allocation_count.h"
#include "support/signals.h"

// What holds for each panner that the factory makes.

namespace {

using Lume::CartesianVector;
using Lume::Pan;

std::unique_ptr<Pan> Make(PannerKind const& kind, unsigned int numInputs) {
    std::unique_ptr<Pan> panner(Pan::factory(numInputs, kind.numOutputs, kind.type.c_str(), kind.role));
    panner->Configure(48000.0f, 64, true);
    return panner;
}

constexpr std::size_t length = 3072, block = 64;

/// Runs one block without allocation.
void Play(Pan& panner, bool adding, std::vector<float*> outs, std::vector<float*> ins, short const* active) {
    const long before = AllocationCount();
    if (adding)
        panner.ProcessAdding(outs.data(), ins.data(), block, active);
    else
        panner.Process(outs.data(), ins.data(), block, active);
    EXPECT_EQ(AllocationCount(), before);
}

/// Where the first source is at a sample; the second one rests.
CartesianVector Moving(std::size_t sample) {
    return At(40.0 + 0.02 * static_cast<double>(sample), 20.0);
}
const CartesianVector resting = At(-70.0, 10.0);

// Red if outputs that are inputs are read after they were written, if adding replaces, if Process and ProcessAdding
// differ, if a block allocates, or if Clear leaves something behind.
TEST(EveryPanner, WorksInPlaceAddsAndClears) {
    for (PannerKind const& kind : panners)
        for (unsigned int numInputs = kind.isSumOfSources ? 1 : 2; numInputs <= 2; ++numInputs) {
            SCOPED_TRACE(kind.type + " " + kind.role + " of " + std::to_string(numInputs));
            const auto process = Make(kind, numInputs), add = Make(kind, numInputs);
            const Channels in = NoiseChannels(2, length);
            Channels inPlace = NoiseChannels(kind.numOutputs, length), added(kind.numOutputs, length, 0.0f);
            for (std::size_t i = 0; i < length; i += block) {
                for (Pan* panner : {process.get(), add.get()}) {
                    panner->SetSourcePosition(numInputs - 1, resting, false);
                    panner->SetSourcePosition(0, Moving(i), false);
                }
                Play(*process, false, inPlace.From(i), inPlace.From(i), orvandsp::allActiveInputs);
                Play(*add, true, added.From(i), in.From(i), orvandsp::allActiveInputs);
            }
            EXPECT_EQ(inPlace.data, added.data);
            EXPECT_GT(EnergyOf(inPlace.data[0]) + EnergyOf(inPlace.data[1]), 1.0);

            const Channels silence(kind.numOutputs, block, 0.0f), nines(kind.numOutputs, block, 9.0f);
            for (Pan* panner : {process.get(), add.get()}) {
                Channels out(kind.numOutputs, block, 9.0f);
                panner->Clear();
                Play(*panner, panner == add.get(), out.pointers, silence.pointers, orvandsp::allActiveInputs);
                EXPECT_EQ(out.data, panner == add.get() ? nines.data : silence.data);
            }
        }
}

// Red if an input that comes later isn't made ready as those of the beginning are, or if a mode outlives that.
TEST(EveryPanner, GrowsAsIfMadeSo) {
    for (PannerKind const& kind : panners) {
        if (!kind.isSumOfSources) continue;
        SCOPED_TRACE(kind.type + " " + kind.role);
        const auto grown = Make(kind, 2), made = Make(kind, 2);
        if (auto* const itd = dynamic_cast<Lume::BinauralPanningITD*>(grown.get()))
            itd->SetInterpolationMode(Lume::Delay::nearest);
        for (const unsigned int numInputs : {1u, 2u}) grown->SetNumInputs(numInputs);
        const Channels in = NoiseChannels(2, length);
        Channels outs[2] = {{kind.numOutputs, length, 0.0f}, {kind.numOutputs, length, 0.0f}};
        for (std::size_t i = 0; i < length; i += block)
            for (Pan* panner : {grown.get(), made.get()}) {
                for (const unsigned int source : {0u, 1u}) panner->SetSourcePosition(source, Moving(i), false);
                Play(*panner, false, outs[panner == made.get()].From(i), in.From(i), orvandsp::allActiveInputs);
            }
        EXPECT_EQ(outs[0].data, outs[1].data);
    }
}

// Red if several sources aren't the sum of each alone, or if an inactive input, whose pointer is null, is read. Red if
// somebody tidies up: a single source that isn't active leaves the outputs of two panners alone; others clear them.
TEST(EveryPanner, AddsUpItsActiveSources) {
    constexpr unsigned int numSources = 5;
    for (PannerKind const& kind : panners) {
        if (!kind.isSumOfSources) continue;
        SCOPED_TRACE(kind.type + " " + kind.role);
        const auto all = Make(kind, numSources);
        std::vector<std::unique_ptr<Pan>> single;
        for (unsigned int s = 0; s < numSources; ++s) single.push_back(Make(kind, 1));
        const Channels in = NoiseChannels(numSources, length);
        Channels together(kind.numOutputs, length, 9.0f), sum(kind.numOutputs, length, 0.0f);
        for (std::size_t i = 0; i < length; i += block) {
            short active[] = {1, 1, 1, 1, 1};
            std::vector<float*> ins = in.From(i);
            if (i >= length / 2) active[1] = 0, ins[1] = nullptr;
            for (unsigned int s = 0; s < numSources; ++s) {
                const CartesianVector position = s == 0 ? Moving(i) : At(75.0 * s, 10.0 * s);
                for (auto [panner, index] : {std::pair{all.get(), s}, {single[s].get(), 0u}})
                    panner->SetSourcePosition(index, position, false);
                Play(*single[s], true, sum.From(i), {ins[s]}, active + s);
            }
            Play(*all, false, together.From(i), ins, active);
        }
        EXPECT_EQ(together.data, sum.data);

        const bool leavesAlone = kind.type == "ab" || std::string(kind.role) == "early";
        const short none[numSources] = {};
        for (Pan* panner : {single[0].get(), all.get()}) {
            Channels out(kind.numOutputs, block, 9.0f);
            Play(*panner, false, out.pointers, std::vector<float*>(numSources), none);
            EXPECT_EQ(out.data[0].back(), leavesAlone && panner == single[0].get() ? 9.0f : 0.0f);
            EXPECT_EQ(out.data[0], out.data[1]);
        }
    }
}

// Red if another number of outputs than two leaves an ear undefined.
TEST(EveryPanner, BinauralSilenceIsForBothEars) {
    for (char const* role : {"direct", "diffuse", "nearfield", "sh", "sphericalheadmodel", "snowman"}) {
        const auto panner = Make({"binaural", 2, role, true}, std::string(role) == "diffuse" ? 2 : 1);
        panner->SetNumOutputs(1);
        Channels in(2, block, 1.0f), out(2, block, 5.0f);
        const short inactive[] = {0, 0};
        panner->Process(out.pointers.data(), in.pointers.data(), block, inactive);
        EXPECT_EQ(out.data, Channels(2, block, 0.0f).data) << role;
    }
}

// Loudspeakers in one place, in one direction, in the listener's place, out of this world, or nowhere, and fewer
// outputs later: an end, and for all that are numbers finite gains.
TEST(EveryPanner, SurvivesBadLayouts) {
    const float nan = std::nanf("");
    const std::vector<CartesianVector> places = {{1, 1, 0}, {0, 0, 0}, {1e30f, -1e30f, 1e25f}, {nan, nan, nan}};
    for (PannerKind const& kind : panners)
        for (const unsigned int numOutputs : {1u, 2u, 3u, 4u, 5u, 12u})
            for (std::size_t layout = 0; layout < 7; ++layout) {
                const std::unique_ptr<Pan> panner(Pan::factory(1, numOutputs, kind.type.c_str(), kind.role));
                std::vector<CartesianVector> speakers(12, places[std::min<std::size_t>(layout, 3)]);
                if (layout > 3) {  // a direction, a line, and places of all kinds
                    const float first = layout == 4 ? 1.0f : -2.0f;
                    for (std::size_t j = 0; j < 12; ++j) speakers[j] = {first + static_cast<float>(j), 0, 0};
                    if (layout == 6) speakers[1] = speakers[0] = At(10), speakers[2] = {nan, nan, nan};
                }
                panner->SetLoudspeakerPositions(speakers.data());
                auto* const amplitude = dynamic_cast<Lume::AmplitudePanning*>(panner.get());
                const bool areNumbers = layout != 3 && layout != 6;
                for (CartesianVector const& source :
                     {CartesianVector{3, 1, 2}, speakers[0], At(10), places[1], places[2]}) {
                    panner->SetSourcePosition(0, source, false);
                    if (amplitude == nullptr || !areNumbers) continue;
                    std::vector<float> gains(panner->GetNumOutputs());
                    amplitude->GetGains(gains.data());
                    EXPECT_TRUE(std::isfinite(Power(gains))) << kind.type << " " << numOutputs << " " << layout;
                }
                for (const unsigned int fewer : {3u, 1u, 0u}) {
                    if (fewer > numOutputs) continue;
                    panner->SetNumOutputs(fewer);
                    panner->SetLoudspeakerPositions(speakers.data());
                    panner->SetSourcePosition(0, At(33), false);
                }
            }
}

}  // namespace
