#include "hrtf/hrtf_filtering.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/channels.h"

namespace {

using Lume::HrtfFiltering;

// Five ways, one of them an FIR filter and one without a delay; sets and delays change while sound runs, so that fades
// begin and end among ways that stand still. Red if a way gets another's delay, buffer or memory, or if one that is
// repeated to fill four lanes fades twice.
TEST(HrtfFiltering, SeveralWaysGiveTheBitsOfOne) {
    constexpr std::size_t numWays = 5;
    constexpr unsigned int block = 64;
    std::vector<HrtfFiltering> alone, together;
    for (std::vector<HrtfFiltering>* const ways : {&alone, &together})
        for (std::size_t i = 0; i < numWays; ++i) {
            ways->emplace_back(i == 1 ? Lume::firFilter : Lume::biquadFilters, i != 3);
            ways->back().Configure(48000.0f, block, true);
            ways->back().SetNumCoefficients(25);
        }
    for (unsigned int round = 0; round < 60; ++round) {
        const std::size_t changed = round * 7 % numWays;
        const std::vector<float> set = MakeNoise(round, 25, 0.3f);
        for (std::vector<HrtfFiltering>* const ways : {&alone, &together}) {
            HrtfFiltering& way = (*ways)[changed];
            if (round % 5 < 2) way.SetCoefficients(set, false);
            if (round % 6 == 0) way.SetDelay(0.02f * static_cast<float>(round), round % 12 == 0);
        }
        SCOPED_TRACE(round);
        const Channels expected = NoiseChannels(numWays, block, 100 * round), actual = expected;
        std::vector<HrtfFiltering::Job> jobs;
        for (std::size_t i = 0; i < numWays; ++i) {
            alone[i].Process(expected.pointers[i], expected.pointers[i], block);
            jobs.push_back({&together[i], actual.pointers[i], actual.pointers[i]});
        }
        HrtfFiltering::ProcessSeveral(jobs, block);
        ExpectSameBits(expected.data, actual.data);
    }
}

// Red if an FIR filter isn't a tap longer than its set (the length of its transform follows that), if a
// shorter set leaves old values behind it, or if a delay acts that isn't wanted.
TEST(HrtfFiltering, SetsAndDelays) {
    Lume::HrtfFiltering fir(Lume::firFilter, false), biquads(Lume::biquadFilters, false);
    fir.SetNumCoefficients(3);
    std::vector<float> taps = {1.0f, 2.0f, 3.0f, 4.0f}, set, impulse = MakeImpulse(512);
    for (const std::size_t count : {4u, 2u}) fir.SetCoefficients(std::span<float const>(taps).first(count), false);
    fir.Process(impulse.data(), impulse.data(), 512);
    fir.GetCoefficients(set);
    EXPECT_EQ(set, (std::vector<float>{1.0f, 2.0f, 0.0f, 0.0f}));

    biquads.SetDelay(10.0f, true);
    std::vector<float> pass = MakeImpulse(25);
    impulse = MakeImpulse(512);
    biquads.SetCoefficients(pass.data(), false);
    biquads.Process(impulse.data(), impulse.data(), 512);
    EXPECT_NE(impulse[0], 0.0f);
}

}  // namespace
