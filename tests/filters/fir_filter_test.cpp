#include "filters/fir_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "filters/faded_fir_filter.h"
#include "filters/faded_fir_time_domain_filter.h"
#include "filters/fir_time_domain_filter.h"
#include "support/allocation_count.h"
#include "support/signals.h"

namespace {

using Lume::FIRFilter;
using orvandsp::Filter;

/// Taps that decay, so that early and late ones can be told apart.
std::vector<float> MakeTaps(std::size_t count, unsigned int seed) {
    std::vector<float> taps = MakeNoise(seed, count);
    for (std::size_t k = 0; k < count; ++k) taps[k] *= 1.0f / static_cast<float>(1 + k % 7);
    return taps;
}

/// The plain sum in double precision: y[n] = sum h[k] x[n - k].
std::vector<double> Convolve(std::vector<float> const& x, std::vector<float> const& h) {
    std::vector<double> y(x.size(), 0.0);
    for (std::size_t n = 0; n < x.size(); ++n)
        for (std::size_t k = 0; k < h.size() && k <= n; ++k)
            y[n] += static_cast<double>(h[k]) * static_cast<double>(x[n - k]);
    return y;
}

/// The impulse response of the direct form: the first two taps fall on the same sample.
std::vector<float> DirectResponse(std::vector<float> taps) {
    if (taps.size() == 1) return taps;
    taps[1] += taps[0];
    taps.erase(taps.begin());
    return taps;
}

template <typename F>
std::vector<float> Filtered(F& filter, std::vector<float> signal, std::size_t block) {
    for (std::size_t i = 0; i < signal.size(); i += block)
        filter.Process(&signal[i], &signal[i], std::min(block, signal.size() - i));
    return signal;
}

FIRFilter MakeFastFilter(std::vector<float> taps, unsigned int block) {
    FIRFilter filter(static_cast<unsigned int>(taps.size()) - 1, Filter::fftconvolution);
    filter.SetMaxBlockSize(block);
    filter.SetCoefficients(taps.data());
    return filter;
}

void ExpectNear(std::vector<float> const& signal, std::vector<double> const& expected, double tolerance) {
    ASSERT_EQ(signal.size(), expected.size());
    for (std::size_t n = 0; n < signal.size(); ++n)
        ASSERT_NEAR(static_cast<double>(signal[n]), expected[n], tolerance) << "sample " << n;
}

// Slow twin, in place, for taps shorter than, as long as and longer than a block: parts of every shape.
TEST(FIRFilter, FastConvolutionIsThePlainSum) {
    const std::vector<float> noise = MakeNoise(1, 2048);
    for (const std::size_t numTaps : {1u, 2u, 63u, 64u, 65u, 128u, 512u, 700u})
        for (const unsigned int block : {1u, 2u, 16u, 64u, 1024u}) {
            SCOPED_TRACE(testing::Message() << numTaps << " taps, block " << block);
            const std::vector<float> taps = MakeTaps(numTaps, 2);
            FIRFilter filter = MakeFastFilter(taps, block);
            // Single-precision roundings of sums of about sqrt(700) / 3.
            ExpectNear(Filtered(filter, noise, block), Convolve(noise, taps), 2e-5);
        }
}

// Red if somebody "repairs" the extra sample, or loses products at the end of the groups of four.
TEST(FIRFilter, DirectFormIsThePlainSumWithTheFirstTwoTapsTogether) {
    const std::vector<float> noise = MakeNoise(3, 600);
    for (const std::size_t numTaps : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 64u, 511u}) {
        SCOPED_TRACE(testing::Message() << numTaps << " taps");
        std::vector<float> taps = MakeTaps(numTaps, 4);
        FIRFilter filter(static_cast<unsigned int>(numTaps) - 1, Filter::timedomain);
        Lume::FIRTimeDomainFilter plain(static_cast<unsigned int>(numTaps) - 1);
        filter.SetCoefficients(taps.data());
        plain.SetCoefficients(taps.data());
        const std::vector<float> out = Filtered(filter, noise, 100);
        ExpectNear(out, Convolve(noise, DirectResponse(taps)), 2e-5);
        EXPECT_EQ(Filtered(plain, noise, 37), out);
    }
}

// A block of no power of two takes no input and lets go of what is owed; the filter then goes on as from silence.
TEST(FIRFilter, OddBlocksDrainTheTail) {
    const std::vector<float> taps = MakeTaps(300, 5);
    FIRFilter filter = MakeFastFilter(taps, 64);
    std::vector<float> signal(128 + 100 + 400 + 640, 1.0f);
    std::vector<float> heard = signal;
    std::fill(heard.begin() + 128, heard.begin() + 628, 0.0f);
    Filter& base = filter;
    base.Process(&signal[0], &signal[0], 64);
    base.Process(&signal[64], &signal[64], 64);
    base.Process(&signal[128], &signal[128], 100);
    base.Process(&signal[228], &signal[228], 400);
    for (std::size_t n = 628; n < signal.size(); n += 64) base.Process(&signal[n], &signal[n], 64);
    ExpectNear(signal, Convolve(heard, taps), 2e-5);
}

// Red if what past blocks owe is computed with the new taps, or if new taps wait longer than a block.
TEST(FIRFilter, NewTapsActOnNewBlocksOnly) {
    const std::vector<float> before = MakeTaps(200, 6);
    std::vector<float> after = MakeTaps(200, 7);
    const std::vector<float> noise = MakeNoise(8, 1024);
    FIRFilter filter = MakeFastFilter(before, 32);
    std::vector<float> early = noise, late = noise;
    std::fill(early.begin() + 512, early.end(), 0.0f);
    std::fill(late.begin(), late.begin() + 512, 0.0f);
    std::vector<double> expected = Convolve(early, before);
    const std::vector<double> second = Convolve(late, after);
    for (std::size_t n = 0; n < expected.size(); ++n) expected[n] += second[n];

    std::vector<float> out = Filtered(filter, {noise.begin(), noise.begin() + 512}, 32);
    filter.SetCoefficients(after.data());
    const std::vector<float> rest = Filtered(filter, {noise.begin() + 512, noise.end()}, 32);
    out.insert(out.end(), rest.begin(), rest.end());
    ExpectNear(out, expected, 2e-5);
}

TEST(FIRFilter, ClearAndAnotherBlockLengthRestartFromSilence) {
    const std::vector<float> taps = MakeTaps(200, 9), noise = MakeNoise(10, 512);
    for (const auto implementation : {Filter::fftconvolution, Filter::timedomain}) {
        FIRFilter filter = MakeFastFilter(taps, 64);
        filter.SetImplementationMethod(implementation);
        const std::vector<float> fresh = Filtered(filter, noise, 64);
        filter.Clear();
        EXPECT_EQ(Filtered(filter, noise, 64), fresh);
        FIRFilter copy = filter;
        copy.SetState(filter);
        // By FFT from silence, in direct form from the other's memory: then both go on alike.
        EXPECT_EQ(Filtered(copy, noise, 64) == fresh, implementation == Filter::fftconvolution);
    }
    FIRFilter filter = MakeFastFilter(taps, 64);
    Filtered(filter, noise, 64);
    const std::vector<float> restarted = Filtered(filter, noise, 128);
    ExpectNear(restarted, Convolve(noise, taps), 2e-5);
    EXPECT_TRUE(filter.IsStable());
    FIRFilter small(2, Filter::timedomain);
    for (const float last : {0.1f, 1.5f}) {
        float three[] = {1.0f, -0.5f, last};
        small.SetCoefficients(three);
        EXPECT_EQ(small.IsMinimumPhase(), last < 1.0f);
    }
}

// A fade never loses input: before, within and behind it the output is the mix of two plain sums. By FFT the new filter
// starts from silence; in direct form it knows the past.
TEST(FadedFIRFilter, FadesBetweenTwoConvolutions) {
    constexpr std::size_t block = 64, start = 256, fade = 221;  // 5 ms at 44.1 kHz, and one sample
    std::vector<float> before = MakeTaps(150, 11), after = MakeTaps(150, 12);
    const std::vector<float> noise = MakeNoise(13, 1024);
    for (const auto implementation : {Filter::fftconvolution, Filter::timedomain}) {
        const bool isFast = implementation == Filter::fftconvolution;
        Lume::FadedFIRFilter filter(149);
        filter.SetImplementationMethod(isFast ? "fftconvolution" : "timedomain");
        filter.SetMaxBlockSize(block);
        filter.SetCoefficients(before.data(), false);
        std::vector<float> zeros(1024, 0.0f), signal = noise;
        for (std::size_t n = 0; n < 1024; n += block) filter.ProcessBlock(&zeros[n], &zeros[n], block, false);
        for (std::size_t n = 0; n < 1024; n += block) {
            if (n == start) filter.SetCoefficients(after.data(), false);
            const long allocations = AllocationCount();
            filter.ProcessBlock(&signal[n], &signal[n], block, false);
            EXPECT_EQ(AllocationCount(), allocations);
        }
        std::vector<float> late = noise;
        if (isFast) std::fill_n(late.begin(), start, 0.0f);
        const std::vector<double> a = Convolve(noise, isFast ? before : DirectResponse(before));
        const std::vector<double> b = Convolve(late, isFast ? after : DirectResponse(after));
        for (std::size_t n = 0; n < 1024; ++n) {
            const double gain = n < start ? 0.0 : std::min(1.0, static_cast<double>(n - start) / fade);
            ASSERT_NEAR(static_cast<double>(signal[n]), (1.0 - gain) * a[n] + gain * b[n], 4e-5)
                << "sample " << n << ", implementation " << implementation;
        }
        std::vector<float> heard(filter.GetNumCoefficients());
        filter.GetCoefficients(heard);
        EXPECT_EQ(heard, after);
    }
    Lume::FadedFIRTimeDomainFilter other(149);
    other.SetCoefficients(after.data(), false);
    std::vector<float> impulse(block, 0.0f), taken(other.GetNumCoefficients());
    other.ProcessBlock(impulse.data(), impulse.data(), block, false);
    other.GetCoefficients(taken);
    EXPECT_EQ(taken, after);
}

}  // namespace
