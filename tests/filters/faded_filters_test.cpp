#include "filters/faded_filters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "filters/faded_hl_shelf.h"

namespace {

/// A plain gain: what comes out of a fade then shows the fade itself.
struct Gain {
    void SetCoefficients(float* set) { gain = *set; }
    void SetState(Gain const&) {}
    void Process(float* output, float* input, unsigned long numSamples) {
        lengths.push_back(numSamples);
        std::transform(input, input + numSamples, output, [this](float x) { return gain * x; });
    }
    void Clear() {}
    void SetSamplerate(float) {}

    float gain = 1.0f;
    std::vector<unsigned long> lengths;
};

/// One that counts what would be lost if it weren't run on whole blocks.
struct WholeBlockGain : Gain {
    bool NeedsWholeBlocks() const { return true; }
};

template <typename T>
class Faded : public orvandsp::FadedFilters<T> {
public:
    Faded() { this->newCoefficients.resize(1); }
    void FadeTo(float gain, bool holdBack = false) { this->SetCoefficients(&gain, holdBack); }
    /// Runs on ones, in blocks.
    std::vector<float> Run(std::size_t length, std::size_t block, float before = 0.0f) {
        std::vector<float> ones(length, 1.0f), out(length, before);
        for (std::size_t i = 0; i < length; i += block)
            this->ProcessBlock(&out[i], &ones[i], std::min(block, length - i), before != 0.0f);
        return out;
    }
    std::vector<unsigned long> const& Lengths() const { return this->filterB.lengths; }
};

// Red if the length of a fade is off by one, if the gains don't add up to 1, if the end of the fade falls on the wrong
// sample, or if adding replaces: whatever the blocks, and forth as well as back.
TEST(FadedFilters, FadeIsAStraightLineOfTheStatedLength) {
    constexpr std::size_t length = 1324;  // 30 ms at 44.1 kHz, and one sample
    for (const std::size_t block : {64u, 331u, 1324u, 2000u, 4000u})
        for (const float before : {0.0f, 10.0f}) {
            Faded<Gain> filter;
            filter.SetCrossFadeTime(30.0f);
            filter.FadeTo(3.0f);
            const std::vector<float> up = filter.Run(4000, block, before);
            for (std::size_t k = 0; k < up.size(); ++k) {
                const double expected = k < length ? 1.0 + 2.0 * static_cast<double>(k) / length : 3.0;
                ASSERT_NEAR(up[k] - before, expected, 5e-5) << k << ", block " << block;
            }
            filter.FadeTo(-1.0f);
            const std::vector<float> down = filter.Run(4000, block, before);
            EXPECT_NEAR(down[662] - before, 1.0, 5e-5);
            EXPECT_EQ(down[1324] - before, -1.0f);
        }
}

// Red if a fade is interrupted, if a set between is heard, or if a set that is held is taken up before its release.
TEST(FadedFilters, OnlyTheLastOfWaitingSetsIsHeard) {
    Faded<Gain> filter;
    filter.SetCrossFadeTime(1000.0f / 441.0f);  // 100 samples, and one
    std::vector<float> out;
    const auto fade = [&](float gain, std::size_t length) {
        filter.FadeTo(gain);
        const std::vector<float> more = filter.Run(length, 10);
        out.insert(out.end(), more.begin(), more.end());
    };
    fade(2.0f, 10);
    fade(100.0f, 40);
    fade(4.0f, 400);
    EXPECT_TRUE(std::is_sorted(out.begin(), out.end()));
    EXPECT_EQ(out[101], 2.0f);
    EXPECT_EQ(out[109], 2.0f);  // the next fade starts with a block
    EXPECT_NEAR(out[110 + 50], 3.0f, 0.05f);
    EXPECT_EQ(out.back(), 4.0f);

    filter.FadeTo(7.0f, true);
    EXPECT_EQ(filter.Run(400, 10).back(), 4.0f);
    filter.FadeTo(7.0f, false);
    EXPECT_EQ(filter.Run(400, 10).back(), 7.0f);
}

// Red if the block in which a fade ends is cut in two for a filter that can't take a part of one.
TEST(FadedFilters, FiltersThatNeedWholeBlocksGetThem) {
    for (const float before : {0.0f, 10.0f}) {
        Faded<Gain> parts;
        Faded<WholeBlockGain> whole;
        parts.FadeTo(2.0f);
        whole.FadeTo(2.0f);
        EXPECT_EQ(parts.Run(512, 64, before), whole.Run(512, 64, before));
        EXPECT_EQ(std::ranges::count(whole.Lengths(), 64ul), 8);
        EXPECT_EQ(std::ranges::count(parts.Lengths(), 64ul), 7);
    }
}

// Red if the template reads more of a set than it has kept: a filter that knows the length of its sets needs no class
// derived from the template. No time goes over in one sample.
TEST(FadedFilters, KnowTheLengthOfASetByTheFilter) {
    orvandsp::FadedFilters<Lume::HLShelf> filter;
    const float set[] = {0.0f, 6.0205999f, 6.0205999f, 6.0205999f, 250.0f, 4000.0f};
    filter.SetCoefficients(set, false);
    std::vector<float> signal(64, 1.0f);
    filter.SetCrossFadeTime(0.0f);
    filter.SetMaxBlockSize(64);
    filter.ProcessBlock(signal.data(), signal.data(), signal.size(), false);
    EXPECT_NEAR(signal[0], 1.0f, 1e-5f);
    EXPECT_NEAR(signal[1], 2.0f, 1e-5f);
}

// Red if the new shelf starts from silence or from stale memory: here it differs from the old one by its overall gain
// alone, and goes over at once.
TEST(FadedHLShelf, TakesOverTheMemoryOfTheOldShelf) {
    Lume::FadedHLShelf faded;
    Lume::HLShelf single;
    faded.SetCrossFadeTime(0.0f);
    const float set[] = {0.0f, 24.0f, 0.0f, 0.0f, 60.0f, 4000.0f};
    for (const float gain : {0.0f, -6.0205999f, 0.0f}) {
        faded.SetParameters({gain, set[1], set[2], set[3], set[4], set[5]});
        single.SetAll(gain, set[1], set[2], set[3], set[4], set[5]);
        std::vector<float> a(4096, 0.25f), b = a;
        faded.ProcessBlock(a.data(), a.data(), a.size(), false);
        single.Process(b.data(), b.data(), b.size());
        for (std::size_t n = 1; n < a.size(); ++n) ASSERT_NEAR(a[n], b[n], 1e-6f) << n;
    }
}

}  // namespace
