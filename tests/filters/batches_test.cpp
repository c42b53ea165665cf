#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "filters/cascade_batch.h"
#include "filters/multi_delay.h"
#include "filters/multi_faded_hl_shelf.h"
#include "filters/multi_hl_shelf.h"
#include "hrtf/hrtf_filtering.h"
#include "kernels/kernels.h"
#include "reverb/cluster.h"
#include "reverb/reverb.h"
#include "support/channels.h"

// What works on several channels at once must give each of them the bits that it would have alone. Runs with each width
// of the kernels (see CMakeLists.txt).

namespace {

using Lume::Delay;
using Lume::HLShelf;

Channels Noise(std::uint32_t seed, std::size_t numChannels, std::size_t length) {
    return NoiseChannels(numChannels, length, seed * 100);
}

/// Lengths of blocks that leave every remainder, and nothing to the loop of four.
constexpr std::size_t blocks[] = {64, 1, 2, 3, 66, 7, 128};
constexpr std::size_t totalLength = 64 + 1 + 2 + 3 + 66 + 7 + 128;

/// Calls process(first, length) with one block after the other.
template <typename Process>
void InBlocks(Process process) {
    std::size_t first = 0;
    for (const std::size_t length : blocks) {
        process(first, length);
        first += length;
    }
}

// Numbers of stages with one pass, with a full one and with several; cascades that differ; and one that has grown while
// it held sound, whose new stages know nothing of what the last one before them gave.
TEST(Batches, CascadesGiveTheBitsOfOne) {
    for (const std::size_t n : {1u, 3u, 4u, 7u, 8u, 13u, 16u})
        for (const unsigned int numStages : {0u, 1u, 6u, 8u, 19u}) {
            SCOPED_TRACE(testing::Message() << n << " cascades of " << numStages);
            std::vector<Lume::BiquadCascade> alone(n), together(n);
            const auto design = [&](std::size_t i, unsigned int number) {
                std::vector<float> set = MakeNoise(static_cast<std::uint32_t>(i), 4 * number + 1, 0.4f);
                for (Lume::BiquadCascade* const cascade : {&alone[i], &together[i]}) {
                    cascade->SetNumStages(number);
                    cascade->SetCoefficients(set.data());
                }
            };
            for (std::size_t i = 0; i < n; ++i) design(i, n == 7 && i == 2 ? numStages + 1 : numStages);
            Channels expected = Noise(4, n, totalLength), actual = expected;
            InBlocks([&](std::size_t first, std::size_t length) {
                if (n == 13 && length == 66)
                    for (std::size_t i = 0; i < n; ++i) design(i, numStages + 2);
                std::vector<Lume::CascadeJob> jobs;
                for (std::size_t i = 0; i < n; ++i) {
                    alone[i].Process(&expected[i][first], &expected[i][first], length);
                    jobs.push_back({&together[i], &actual[i][first], &actual[i][first]});
                }
                FilterCascades(jobs, length);
            });
            ExpectSameBits(expected.data, actual.data);
        }
}

// The banks, from less than four channels to more: every remainder, channels that are inactive now and then, fades that
// end within a block while others wait, lines that glide among lines that stand still.
TEST(Batches, BanksGiveTheBitsOfTheirChannels) {
    constexpr float rate = 44100.0f;
    constexpr unsigned int blockSize = 128;
    std::mt19937 random(3);
    for (const unsigned int n : {1u, 2u, 3u, 5u, 8u, 9u, 15u, 16u, 19u}) {
        SCOPED_TRACE(n);
        Lume::MultiHLShelf shelves(n);
        std::vector<HLShelf> oneShelf(n);
        Lume::MultiFadedHLShelf faded(n);
        std::vector<Lume::FadedHLShelf> oneFaded(n);
        Lume::MultiDelay delays(n, 20.0f);
        delays.Configure(rate, blockSize, true);
        delays.SetInterpolationMode(Delay::allpass);
        std::vector<Delay> oneDelay;
        faded.SetMaxBlockSize(blockSize);
        faded.SetCrossFadeTime(2.0f);  // 89 samples
        for (Lume::FadedHLShelf& shelf : oneFaded) shelf.SetCrossFadeTime(2.0f);
        for (unsigned int c = 0; c < n; ++c) {
            oneDelay.emplace_back(20.0f, Delay::allpass);
            oneDelay[c].Configure(rate, blockSize, true);
        }
        for (int round = 0; round < 12; ++round) {
            SCOPED_TRACE(round);
            if (round % 3 == 0) {
                const float gain = static_cast<float>(round) - 6.0f;
                const float set[] = {gain, 0.0f, gain, 3.0f, 300.0f, 2000.0f + 100.0f * gain};
                shelves.SetAll(set[0], set[1], set[2], set[3], set[4], set[5]);
                shelves.SetGaindB(-gain);
                faded.SetAll(set[0], set[1], set[2], set[3], set[4], set[5]);
                for (unsigned int c = 0; c < n; ++c) {
                    oneShelf[c].SetAll(-gain, set[1], set[2], set[3], set[4], set[5]);
                    oneFaded[c].SetCoefficients(set, false);
                }
            }
            if (round == 10) {
                faded.ResetToDefaults();
                for (Lume::FadedHLShelf& shelf : oneFaded) shelf.SetParameters({});
            }
            if (round % 2 == 0) {
                const auto glides = static_cast<unsigned int>(random()) % n;
                delays.SetDelay(glides, 1.7f * static_cast<float>(round));
                oneDelay[glides].SetDelay(1.7f * static_cast<float>(round), false);
            }
            if (round == 5) {
                std::vector<float> all(n, 4.2f);
                delays.SetDelays(all.data());
                for (Delay& delay : oneDelay) delay.SetDelay(4.2f, false);
            }
            std::vector<short> active(n);
            for (short& flag : active) flag = random() % 4 != 0;
            const Channels signal = Noise(static_cast<std::uint32_t>(round), n, totalLength);
            Channels expected[3] = {signal, signal, signal}, actual[3] = {signal, signal, signal};
            InBlocks([&](std::size_t first, std::size_t length) {
                for (unsigned int c = 0; c < n; ++c) {
                    float* const out[3] = {&expected[0][c][first], &expected[1][c][first], &expected[2][c][first]};
                    if (active[c] == 0) {
                        for (float* const silent : out) std::fill_n(silent, length, 0.0f);
                        continue;
                    }
                    oneShelf[c].Process(out[0], out[0], length);
                    oneFaded[c].ProcessBlock(out[1], out[1], length, false);
                    oneDelay[c].Process(out[2], out[2], static_cast<int>(length));
                }
                orvandsp::SignalProcessing* const banks[3] = {&shelves, &faded, &delays};
                for (std::size_t b = 0; b < 3; ++b) {
                    std::vector<float*> channels = actual[b].From(first);
                    const long allocations = AllocationCount();
                    banks[b]->Process(channels.data(), channels.data(), length, active.data());
                    EXPECT_EQ(AllocationCount(), allocations);
                }
            });
            for (std::size_t b = 0; b < 3; ++b) {
                SCOPED_TRACE(b);
                ExpectSameBits(expected[b].data, actual[b].data);
            }
        }
    }
}

// Ways to ears, FIR filters, some without a delay and some with fewer stages among them. Sets and delays change while
// sound runs, slowly and fast, so that fades and glides begin and end within blocks among ways that stand still, and
// heads leave rows of samples. Red if a way gets another's delay, buffer or memory, or if one that is repeated to fill
// the lanes fades twice.
TEST(Batches, EarsGiveTheBitsOfOne) {
    using Lume::HrtfFiltering;
    for (const std::size_t n : {1u, 4u, 5u, 8u, 13u, 21u, 40u}) {
        std::vector<HrtfFiltering> alone, together;
        for (std::vector<HrtfFiltering>* const ways : {&alone, &together})
            for (std::size_t i = 0; i < n; ++i) {
                HrtfFiltering& way = ways->emplace_back(i % 9 == 1 ? Lume::firFilter : Lume::biquadFilters, i % 9 != 3);
                way.Configure(48000.0f, 128, true);
                way.SetNumCoefficients(i % 9 == 4 ? 17 : 25);
            }
        for (unsigned int round = 0; round < 30; ++round) {
            SCOPED_TRACE(testing::Message() << n << " ways, round " << round);
            const std::vector<float> set = MakeNoise(round, 25, 0.3f);
            for (std::vector<HrtfFiltering>* const ways : {&alone, &together})
                for (std::size_t i = round % 3; i < n; i += 1 + round % 4) {
                    HrtfFiltering& way = (*ways)[i];
                    if (round % 5 < 2) way.SetCoefficients(set, false);
                    way.SetInterpolationTime(round % 2 == 0 ? 3.0f : 40.0f);
                    way.SetDelay(round % 7 == 0 ? 30.0f : 0.02f * static_cast<float>(i + round), round % 12 == 0);
                }
            Channels expected = Noise(round, n, totalLength), actual = expected;
            InBlocks([&](std::size_t first, std::size_t length) {
                std::vector<HrtfFiltering::Job> jobs;
                for (std::size_t i = 0; i < n; ++i) {
                    alone[i].Process(&expected[i][first], &expected[i][first], length);
                    jobs.push_back({&together[i], &actual[i][first], &actual[i][first]});
                }
                HrtfFiltering::ProcessSeveral(jobs, length);
            });
            ASSERT_NO_FATAL_FAILURE(ExpectSameBits(expected.data, actual.data));
        }
    }
}

// Gains of the inputs ahead of those of the terms, steady ones and rows, against inputs that were scaled before.
TEST(Batches, AMixThroughOwnGainsGivesTheBitsOfScaledInputs) {
    namespace kernels = orvandsp::kernels;
    const std::vector<float> own = {0.3f, -1.7f, 1.0f}, rows = MakeNoise(3, 2 * kernels::gainRowLength);
    const kernels::MixTerm terms[] = {{0, 1, 0.0f},
                                      {2, kernels::MixTerm::steady, 0.7f},
                                      {1, kernels::MixTerm::steady, 0.1f},
                                      {0, kernels::MixTerm::steady, 0.9f}};
    const std::size_t ends[] = {2, 4};
    const Channels inputs = Noise(5, 3, kernels::gainRowLength);
    Channels scaled = inputs;
    for (std::size_t c = 0; c < 3; ++c)
        for (float& x : scaled[c]) x *= own[c];
    for (const std::size_t length : {64u, 5u, 23u}) {
        Channels expected = Noise(6, 2, 64), actual = expected;
        kernels::Get().mix(expected.pointers.data(), 0, 2, {scaled.pointers.data(), 0, rows.data()}, terms, 0, ends,
                           length, length == 5);
        kernels::Get().mix(actual.pointers.data(), 0, 2, {inputs.pointers.data(), 0, rows.data(), own.data()}, terms, 0,
                           ends, length, length == 5);
        ExpectSameBits(actual.data, expected.data);
    }
}

// Cluster and late field with their mix in one pass, against one after the other: with and without losses in air, in
// blocks of several chunks, across the ends of all lines, and with a level that changes inside a block.
TEST(Batches, TheLateMixGivesTheBitsOfItsSteps) {
    constexpr float rate = 44100.0f, clusterGain = 0.7f, lateGain = 0.3f;
    for (const unsigned int n : {3u, 4u, 8u, 9u, 16u}) {
        SCOPED_TRACE(n);
        struct Room {
            explicit Room(unsigned int n) : cluster(n, rate), late(n, rate), shelf(n) {
                cluster.Configure(rate, 128, true);
                late.Configure(rate, 128, true);
                shelf.Configure(rate, 128, true);
                shelf.SetParameters({.gain = -2.0f, .gainLow = 3.0f, .gainMed = 0.0f, .gainHigh = -4.0f});
            }
            Lume::Cluster cluster;
            Lume::Reverb late;
            Lume::MultiFadedHLShelf shelf;
        } steps(n), once(n);
        int numAtOnce = 0;
        for (std::uint32_t round = 0; round < 64; ++round) {
            const Channels inputs = Noise(round, n, totalLength);
            Channels clustered = inputs, field = inputs, expected = inputs, actual = inputs;
            for (Room* const room : {&steps, &once}) {
                room->late.UseAirAbsorption(round % 3 != 0);
                if (round % 16 == 0) room->late.SetDecayTime(2.0f + 0.1f * static_cast<float>(round));
            }
            const auto inSteps = [&](Room& room, float** in, float** out, std::size_t first, std::size_t length) {
                std::vector<float*> reflected = clustered.From(first), late = field.From(first);
                short const* const active = orvandsp::allActiveInputs;
                room.cluster.Process(reflected.data(), in, length, active);
                room.late.Process(late.data(), reflected.data(), length, active);
                const std::vector<float> gains(n, clusterGain);
                orvandsp::kernels::Get().scale(out, reflected.data(), gains.data(), n, length);
                room.shelf.Process(out, out, length, active);
                orvandsp::kernels::Get().addScaled(out, late.data(), lateGain, n, length);
            };
            InBlocks([&](std::size_t first, std::size_t length) {
                std::vector<float*> in = inputs.From(first), out = expected.From(first), outOnce = actual.From(first);
                inSteps(steps, in.data(), out.data(), first, length);
                orvandsp::kernels::AllpassHead heads[16];
                orvandsp::kernels::Shelf shelves[16];
                if (!once.late.StandsStill() || !once.cluster.FindHeads(heads, length) ||
                    !once.shelf.FindFilters(shelves))
                    return inSteps(once, in.data(), outOnce.data(), first, length);
                ++numAtOnce;
                once.cluster.WriteBlock(in.data(), length);
                once.late.ProcessMixed(outOnce.data(), {heads, shelves, clusterGain, lateGain}, length);
                once.cluster.FinishBlock(length);
            });
            ASSERT_NO_FATAL_FAILURE(ExpectSameBits(expected.data, actual.data)) << "round " << round;
        }
        EXPECT_GT(numAtOnce, 300);
    }
}

}  // namespace
