#include "dsp/four_channels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "filters/four_allpass_heads.h"
#include "filters/four_cascades.h"
#include "filters/four_shelves.h"
#include "filters/multi_delay.h"
#include "filters/multi_faded_hl_shelf.h"
#include "filters/multi_hl_shelf.h"
#include "filters/tap_out.h"
#include "filters/unitary_hl_shelf.h"
#include "support/allocation_count.h"
#include "support/signals.h"

// What works on four channels at once must give each of them the bits that it would have alone.

namespace {

using Lume::Delay;
using Lume::HLShelf;
using orvandsp::PerLane;

using Channels = std::vector<std::vector<float>>;

Channels Noise(std::uint32_t seed, std::size_t numChannels, std::size_t length) {
    Channels result;
    for (std::uint32_t c = 0; c < numChannels; ++c) result.push_back(MakeNoise(seed * 100 + c, length));
    return result;
}

/// Addresses from a sample on.
std::vector<float*> Pointers(Channels& channels, std::size_t first = 0) {
    std::vector<float*> result;
    for (std::vector<float>& channel : channels) result.push_back(channel.data() + first);
    return result;
}

void ExpectSameBits(Channels const& a, Channels const& b) {
    for (std::size_t c = 0; c < a.size(); ++c)
        ASSERT_EQ(std::memcmp(a[c].data(), b[c].data(), a[c].size() * sizeof(float)), 0) << "channel " << c;
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

/// Another design for each number.
void Design(HLShelf& shelf, std::size_t i) {
    const auto f = static_cast<float>(i);
    shelf.SetAll(1.0f - f, 6.0f - 2.0f * f, -f, f - 12.0f, 200.0f + 50.0f * f, 3000.0f + 500.0f * f);
}

TEST(FourChannels, ShelvesGiveTheBitsOfOne) {
    PerLane<HLShelf> alone, together;
    Lume::UnitaryHLShelf unitaryAlone, unitaryTogether;
    const PerLane<HLShelf*> one = {&alone[0], &alone[1], &alone[2], &unitaryAlone};
    const PerLane<HLShelf*> four = {&together[0], &together[1], &together[2], &unitaryTogether};
    for (std::size_t i = 0; i < 4; ++i) {
        Design(*one[i], i);
        Design(*four[i], i);
    }
    Channels expected = Noise(1, 4, totalLength), actual = expected;
    InBlocks([&](std::size_t first, std::size_t length) {
        PerLane<Lume::ShelfJob> jobs;
        for (std::size_t i = 0; i < 4; ++i) {
            one[i]->Process(&expected[i][first], &expected[i][first], length);
            jobs[i] = {four[i], &actual[i][first], &actual[i][first]};
        }
        FilterFourShelves(jobs, length);
    });
    ExpectSameBits(expected, actual);
}

// Numbers of stages with one pass, with a full one and with several; and cascades that differ, with a job that is
// repeated.
TEST(FourChannels, CascadesGiveTheBitsOfOne) {
    for (const PerLane<unsigned int> numStages :
         {PerLane<unsigned int>{0, 0, 0, 0}, {6, 6, 6, 6}, {8, 8, 8, 8}, {19, 19, 19, 19}, {2, 6, 2, 2}}) {
        const std::size_t numJobs = numStages[0] == numStages[1] ? 4 : 2;
        PerLane<Lume::BiquadCascade> alone, together;
        for (std::size_t i = 0; i < 4; ++i) {
            std::vector<float> set = MakeNoise(static_cast<std::uint32_t>(i), 4 * numStages[i] + 1, 0.4f);
            for (Lume::BiquadCascade* const cascade : {&alone[i], &together[i]}) {
                cascade->SetNumStages(numStages[i]);
                cascade->SetCoefficients(set.data());
            }
        }
        Channels expected = Noise(4, numJobs, totalLength), actual = expected;
        InBlocks([&](std::size_t first, std::size_t length) {
            PerLane<Lume::CascadeJob> jobs;
            for (std::size_t i = 0; i < 4; ++i) {
                const std::size_t c = std::min(i, numJobs - 1);
                if (c == i) alone[c].Process(&expected[c][first], &expected[c][first], length);
                jobs[i] = {&together[c], &actual[c][first], &actual[c][first]};
            }
            FilterFourCascades(jobs, numJobs, length);
        });
        ExpectSameBits(expected, actual);
    }
}

// Red if the lanes mix up heads, if a run ends at the wrong ring, or if a head forgets its previous output: each line
// wraps at another sample, and some within a block.
TEST(FourChannels, AllpassHeadsAndShelvesInSeriesGiveTheBitsOfOne) {
    std::vector<Delay> linesAlone, linesTogether;
    PerLane<HLShelf> alone, together;
    for (std::size_t i = 0; i < 4; ++i) {
        const auto ms = static_cast<float>(i);
        for (std::vector<Delay>* const lines : {&linesAlone, &linesTogether}) {
            lines->emplace_back(ms, Delay::allpass);
            lines->back().Configure(44100.0f, 128, true);
        }
        Design(alone[i], i);
        Design(together[i], i);
    }
    std::vector<Lume::TapOut> tapsAlone, tapsTogether;
    for (std::size_t i = 0; i < 4; ++i) {
        tapsAlone.emplace_back(&linesAlone[i]);
        tapsTogether.emplace_back(&linesTogether[i]);
        tapsAlone[i].SetDelay(2.9f + 0.31f * static_cast<float>(i), true);
        tapsTogether[i].SetDelay(2.9f + 0.31f * static_cast<float>(i), true);
    }
    Channels signal = Noise(2, 4, totalLength), expected = signal, actual = signal;
    for (int round = 0; round < 8; ++round)
        InBlocks([&](std::size_t first, std::size_t length) {
            const auto count = static_cast<int>(length);
            PerLane<float*> outputs;
            PerLane<std::optional<Delay::AllpassHead>> found;
            for (std::size_t i = 0; i < 4; ++i) {
                linesAlone[i].tapIn(&signal[i][first], count, 0);
                linesTogether[i].tapIn(&signal[i][first], count, 0);
                tapsAlone[i].Process(&expected[i][first], static_cast<unsigned int>(count));
                alone[i].Process(&expected[i][first], &expected[i][first], length);
                outputs[i] = &actual[i][first];
                found[i] = tapsTogether[i].FindAllpassHead();
            }
            const PerLane<HLShelf*> shelves = {&together[0], &together[1], &together[2], &together[3]};
            auto heads = Lume::FourAllpassHeads::From(found);
            ASSERT_TRUE(heads);
            heads->Read(outputs, count, Lume::FourShelves(shelves)).GiveStateTo(shelves);
            for (std::size_t i = 0; i < 4; ++i) {
                linesAlone[i].AdvanceWritePosition(count);
                linesTogether[i].AdvanceWritePosition(count);
            }
            ExpectSameBits(expected, actual);
        });
}

// The banks, from less than four channels to more: every remainder, channels that are inactive now and then, fades that
// end within a block while others wait, lines that glide among lines that stand still.
TEST(FourChannels, BanksGiveTheBitsOfTheirChannels) {
    constexpr float rate = 44100.0f;
    constexpr unsigned int blockSize = 128;
    std::mt19937 random(3);
    for (unsigned int n = 1; n <= 9; ++n) {
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
                    std::vector<float*> channels = Pointers(actual[b], first);
                    const long allocations = AllocationCount();
                    banks[b]->Process(channels.data(), channels.data(), length, active.data());
                    EXPECT_EQ(AllocationCount(), allocations);
                }
            });
            for (std::size_t b = 0; b < 3; ++b) {
                SCOPED_TRACE(b);
                ExpectSameBits(expected[b], actual[b]);
            }
        }
    }
}

}  // namespace
