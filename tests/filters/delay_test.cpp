#include "filters/delay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <vector>

#include "filters/delay_batch.h"
#include "filters/tap_out.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

using Lume::Delay;
using Lume::TapOut;
using orvandsp::Ramp;

constexpr Delay::InterpolationMode unnamedMode = static_cast<Delay::InterpolationMode>(4);
constexpr Delay::InterpolationMode allModes[] = {
    Delay::nearest,  Delay::linear, Delay::lagrange3, Delay::allpass,   unnamedMode,
    Delay::hermite3, Delay::watte3, Delay::bspline3,  Delay::parabolic, Delay::nearestXfade};

/// Sends a signal through a line in blocks.
std::vector<float> Delayed(Delay& delay, std::vector<float> signal, int blockSize) {
    for (std::size_t i = 0; i < signal.size(); i += static_cast<std::size_t>(blockSize)) {
        const int count = std::min(blockSize, static_cast<int>(signal.size() - i));
        delay.Process(signal.data() + i, signal.data() + i, count);
    }
    return signal;
}

// Red if a run across the wrap loses samples, if a guard is stale, or if 0 isn't the sample of the same block. The two
// smoothing readers spread an impulse by their known weights.
TEST(Delay, ImpulseArrivesAtWholeDelaysInEveryMode) {
    for (const auto mode : allModes)
        for (const int blockSize : {1, 64, 500})
            for (const int samples : {0, 1, 63, 700}) {
                Delay delay(20.0f, mode);
                delay.SetDelayInSamples(static_cast<float>(samples), true);
                // Moves the write position so that the impulse falls near the end of the ring of 2048.
                Delayed(delay, std::vector<float>(2040, 0.0f), blockSize);
                const std::vector<float> out = Delayed(delay, MakeImpulse(2000), blockSize);
                float beside = 0.0f;
                if (mode == Delay::bspline3) beside = 1.0f / 6.0f;
                if (mode == Delay::parabolic) beside = 0.25f;
                for (int n = 0; n < 2000; ++n) {
                    // The sample after the newest isn't there yet: a smoothing reader at delay 0 misses its future.
                    const float expected = n == samples       ? 1.0f - 2.0f * beside
                                           : n == samples + 1 ? beside
                                           : n + 1 == samples ? beside
                                                              : 0.0f;
                    ASSERT_NEAR(out[static_cast<std::size_t>(n)], expected, 1e-7f)
                        << "mode " << mode << " block " << blockSize << " delay " << samples << " sample " << n;
                }
            }
}

// Ground truth: polynomials that each reader must reproduce, and its known weights halfway between samples, where the
// curvature shows that polynomials of low degree don't see. Red for any wrong coefficient, for a fraction counted from
// the wrong side, for stale neighbours at the ends of the ring, and in one of the three forms alone.
TEST(Delay, ReadersAreTheKnownInterpolatorsInAllThreeForms) {
    struct Case {
        Delay::InterpolationMode mode;
        int degree;
        float outer, inner;
    };
    constexpr int length = 400;
    constexpr int count = 64;
    for (const Case c :
         {Case{Delay::linear, 1, 0.0f, 0.5f}, Case{Delay::lagrange3, 3, -1.0f / 16, 9.0f / 16},
          Case{Delay::hermite3, 2, -1.0f / 16, 9.0f / 16}, Case{Delay::watte3, 1, -1.0f / 8, 5.0f / 8},
          Case{Delay::bspline3, 1, 1.0f / 48, 23.0f / 48}, Case{Delay::parabolic, 1, 1.0f / 16, 7.0f / 16}}) {
        SCOPED_TRACE(Delay::GetInterpolationModeName(c.mode));
        const auto polynomial = [&](double n) {
            const double t = (n - length) * 0.01;
            return 0.3 + 0.5 * t + (c.degree >= 2 ? 0.7 * t * t : 0.0) + (c.degree >= 3 ? -0.4 * t * t * t : 0.0);
        };
        Delay delay(20.0f, c.mode);
        std::vector<float> signal(length);
        for (int n = 0; n < length; ++n) signal[static_cast<std::size_t>(n)] = static_cast<float>(polynomial(n));
        // Both the write and the reads at 200.875 samples go across the end of the ring.
        delay.AdvanceWritePosition(delay.GetSize() - 230);
        delay.tapIn(signal.data(), length, 0);
        delay.AdvanceWritePosition(length);
        for (const float samples : {100.25f, 133.0f, 200.875f}) {
            float fixed[count], ramped[count], each[count], state = 0.0f, delays[count];
            std::fill_n(delays, count, samples);
            Ramp standing;
            standing.Start(samples, 0.0f);
            standing.remaining = standing.total = 1000;
            delay.tapOut(fixed, count, samples, c.mode, state);
            delay.tapOut(ramped, count, standing, c.mode, state);
            delay.tapOut(each, delays, count, c.mode, state);
            for (int k = 0; k < count; ++k) {
                // 2e-6: a dozen roundings of values around 1.
                ASSERT_NEAR(fixed[k], polynomial(length - static_cast<double>(samples) + k), 2e-6) << samples << k;
                ASSERT_EQ(std::bit_cast<std::uint32_t>(fixed[k]), std::bit_cast<std::uint32_t>(ramped[k]));
                ASSERT_EQ(std::bit_cast<std::uint32_t>(fixed[k]), std::bit_cast<std::uint32_t>(each[k]));
            }
        }
        Delay halfway(20.0f, c.mode);
        halfway.SetDelayInSamples(10.5f, true);
        const std::vector<float> h = Delayed(halfway, MakeImpulse(64), 64);
        const float weights[] = {c.outer, c.inner, c.inner, c.outer};
        for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(h[9 + k], weights[k], 1e-7f) << k;
    }
}

// Red if the pole is misplaced or the state isn't carried from block to block.
TEST(Delay, AllpassIsFlatAndDelaysByTheFraction) {
    for (const float fraction : {0.125f, 0.5f, 0.9375f}) {
        Delay delay(20.0f, Delay::allpass);
        delay.SetDelayInSamples(50.0f + fraction, true);
        const std::vector<float> out = Delayed(delay, MakeImpulse(4096), 64);
        for (const double frequency : {0.001, 0.05, 0.21, 0.4999}) {  // cycles a sample
            const std::complex<double> sum =
                ResponseAt(out, frequency) * std::polar(1.0, 100.0 * std::numbers::pi * frequency);
            EXPECT_NEAR(std::abs(sum), 1.0, 1e-5) << fraction << " at " << frequency;
            if (frequency < 0.01) {
                EXPECT_NEAR(-std::arg(sum) / (2.0 * std::numbers::pi * frequency), fraction, 1e-4) << fraction;
            }
        }
    }
}

// Ground truth: a line that holds its own time is read at time minus delay. Red if a sample uses the delay after its
// step, if the glide has another length, or if its end is snapped away from the sum of the increments.
TEST(Delay, GlideMovesTheHeadSteadilyAndEndsBesideItsTarget) {
    Delay delay(100.0f, Delay::linear);
    float time = 0.0f;
    const auto run = [&](std::size_t length) {
        std::vector<float> clock(length);
        for (float& value : clock) value = time++;
        return Delayed(delay, clock, 64);
    };
    run(4096);
    delay.SetDelay(30.0f, false);  // 1323 samples in 1323: the head stands still
    const std::vector<float> still = run(2000);
    for (std::size_t n = 0; n <= 1323; ++n) ASSERT_NEAR(still[n], 4096.0f, 0.5f) << n;
    ASSERT_EQ(still[0], 4096.0f);
    EXPECT_NEAR(still[1999], 4096.0f + 1999.0f - 1323.0f, 0.5f);

    delay.SetDelay(15.0f, false);  // back by 661.5 in 1323: one and a half times as fast
    const std::vector<float> faster = run(2000);
    for (std::size_t n = 0; n < 1323; ++n)
        ASSERT_NEAR(faster[n], 6096.0f - 1323.0f + 1.5f * static_cast<float>(n), 0.6f) << n;
    EXPECT_FLOAT_EQ(delay.GetDelay(), 15.0f);

    // The sum of 1323 increments in single precision lies 0.05 samples beside the target.
    delay.SetDelay(90.1f, false);
    const float target = 90.1f * 44100.0f * 0.001f;
    const float increment = (target - 661.5f) / 1323.0f;
    float sum = 661.5f;
    for (int k = 0; k < 1323; ++k) sum += increment;
    ASSERT_GT(std::abs(sum - target), 0.04f);
    EXPECT_NEAR(run(2048)[2000], 8096.0f + 2000.0f - sum, 2e-3f);
}

// Red if the positions move with the sample, or if the gain uses the count after the step.
TEST(Delay, NearestCrossfadeDrawsALineBetweenTwoHeldSamples) {
    Delay delay(20.0f, Delay::nearestXfade);
    std::vector<float> signal(400, 0.0f);
    signal[300] = 1.0f;  // 100 samples ago
    signal[200] = 3.0f;  // 200 samples ago
    delay.tapIn(signal.data(), 400, 0);
    delay.AdvanceWritePosition(400);
    Ramp ramp;
    ramp.Start(100.0f, 0.0f);
    ramp.Start(200.0f, 10.0f);
    float out[500], state = 0.0f;
    delay.tapOut(out, 500u, ramp, Delay::nearestXfade, state);
    for (int k = 0; k < 441; ++k) ASSERT_NEAR(out[k], 1.0f + 2.0f * static_cast<float>(k) / 441.0f, 1e-6f) << k;
    EXPECT_EQ(out[499], 3.0f);
    EXPECT_EQ(ramp.remaining, 0);
}

// Red if the whole-sample modes round alike in all forms: fixed and ramped reads round for some, cut for others.
TEST(Delay, WholeSampleModesRoundOrCutByForm) {
    Delay delay(20.0f, Delay::nearest);
    std::vector<float> time(400);
    for (std::size_t n = 0; n < time.size(); ++n) time[n] = static_cast<float>(n);
    delay.tapIn(time.data(), 400, 0);
    delay.AdvanceWritePosition(400);
    float out[1], state = 0.0f, samples[] = {100.25f};  // position 299.75
    for (const auto mode : {Delay::nearest, Delay::nearestXfade, unnamedMode}) {
        delay.tapOut(out, 1, samples[0], mode, state);
        EXPECT_EQ(out[0], mode == unnamedMode ? 299.0f : 300.0f) << mode;
        delay.tapOut(out, samples, 1, mode, state);
        EXPECT_EQ(out[0], 299.0f) << mode;
        Ramp standing;
        standing.Start(samples[0], 0.0f);
        standing.remaining = standing.total = 10;
        delay.tapOut(out, 1u, standing, mode, state);
        EXPECT_EQ(out[0], 300.0f) << mode;
        EXPECT_EQ(standing.remaining, 9) << mode;
    }
    // Beyond the ring a delay given for each sample wraps around.
    samples[0] = static_cast<float>(delay.GetSize()) + 10.0f;
    delay.tapOut(out, samples, 1, Delay::linear, state);
    EXPECT_EQ(out[0], 390.0f);
}

// Red if a tap keeps its mode or state once its glide is over.
TEST(Delay, TapReadsInTheModeOfItsLineAfterAGlide) {
    Delay line(20.0f, Delay::allpass);
    TapOut tap(&line);
    tap.SetInterpolationMode("linear");
    tap.SetInterpolationTime(1.0f);
    tap.SetDelay(100.5f / 44.1f, true);
    std::vector<float> in = MakeImpulse(256), out(256);
    line.tapIn(in.data(), 256, 0);
    tap.Process(out.data(), 256);
    line.AdvanceWritePosition(256);
    EXPECT_NEAR(out[100], 1.0f / 3.0f, 1e-3f);  // a = 0.5 / 1.5
    EXPECT_NEAR(out[102], (1.0f - 1.0f / 9.0f) * -1.0f / 3.0f, 1e-3f);

    // A nearest reader only repeats samples; an allpass would blur them.
    TapOut gliding(&line);
    gliding.SetInterpolationTime(2.0f);
    gliding.SetDelay(0.5f, false);
    for (std::size_t n = 0; n < 256; ++n) in[n] = n % 2 == 0 ? 1.0f : -1.0f;
    line.tapIn(in.data(), 256, 0);
    gliding.Process(out.data(), 88);
    for (std::size_t n = 0; n < 88; ++n) ASSERT_TRUE(out[n] == 1.0f || out[n] == -1.0f) << n;
}

TEST(Delay, EveryChangeOfSizeOrRateAddsTheMarginAndSilences) {
    Delay delay(0.0f, Delay::linear);
    EXPECT_EQ(delay.GetSize(), 1024);  // 5 ms: 512 + 1 + 220
    delay.SetDelay(3.0f, true);
    const struct {
        std::function<void()> change;
        float maximum, delay;
    } cases[] = {{[&] { delay.SetMaxBlockSize(512); }, 10.0f, 3.0f},
                 {[&] { delay.SetSamplerate(48000.0f); }, 15.0f, 3.0f},
                 {[&] { delay.SetMaxDelay(10.0f); }, 15.0f, 3.0f},
                 {[&] { delay.SetDelay(20.0f, true); }, 25.0f, 20.0f}};
    for (auto const& expected : cases) {
        Delayed(delay, std::vector<float>(512, 1.0f), 64);
        expected.change();
        EXPECT_EQ(EnergyOf(Delayed(delay, std::vector<float>(512, 0.0f), 64)), 0.0);
        EXPECT_EQ(delay.GetMaxDelay(), expected.maximum);
        EXPECT_FLOAT_EQ(delay.GetDelay(), expected.delay);
    }
    EXPECT_EQ(delay.GetSize(), 2048);  // 512 + 1 + 1200
    EXPECT_THROW(delay.SetMaxDelay(1e30f), std::length_error);
    EXPECT_EQ(delay.GetMaxDelay(), 25.0f);
    delay.SetMaxDelay(-1000.0f);
    EXPECT_EQ(delay.GetSize(), 1);
}

// A line that was cleared against one that never held anything, both read and written anyhow, alone and as in a bank.
// Red if a head hears what was there, on the move, at either end of the ring, or in cells that the writer left out.
TEST(Delay, AClearedLineIsANewOne) {
    std::mt19937 random(3);
    const auto below = [&](unsigned int limit) { return static_cast<int>(random() % limit); };
    const std::vector<float> noise = MakeNoise(1, 4096), silence(4096, 0.0f);
    for (int round = 0; round < 300; ++round) {
        const auto mode = static_cast<Delay::InterpolationMode>(below(10));
        Delay cleared(10.0f, mode), fresh(10.0f, mode);
        const int past = 1500 + below(2000);
        for (int done = 0; done < past; done += 100) {
            float out[100];
            cleared.Process(out, const_cast<float*>(noise.data()) + done, 100);
            fresh.Process(out, const_cast<float*>(silence.data()) + done, 100);
        }
        cleared.Clear();
        for (int i = 0; i < 40; ++i) {
            const int count = 1 + below(100), skipped = below(4) == 0 ? below(300) : 0;
            const float ms = static_cast<float>(below(1000)) * 0.01f;
            std::vector<float> in(noise.begin() + i, noise.begin() + i + count), delays(in.size(), 20.0f * ms);
            std::vector<float> outs[2], each[2];
            for (Delay* const line : {&cleared, &fresh}) {
                std::vector<float>& out = outs[line == &fresh];
                out.resize(in.size());
                if (i % 8 == 0) line->SetDelay(ms, round % 2 == 0);
                line->AdvanceWritePosition(skipped);
                const Lume::DelayJob job = {line, out.data(), in.data()};
                if (round % 4 < 2)
                    line->Process(out.data(), in.data(), count);
                else
                    Lume::ProcessDelays({&job, 1}, count);
                each[line == &fresh] = out;
                float state = 0.0f;
                if (i > 30) line->tapOut(each[line == &fresh].data(), delays.data(), count, mode, state);
            }
            ASSERT_EQ(outs[0], outs[1]) << "mode " << mode << ", round " << round << ", block " << i;
            ASSERT_EQ(each[0], each[1]) << "mode " << mode << ", round " << round << ", block " << i;
        }
    }
}

TEST(Delay, ModesAreFoundByName) {
    for (const auto mode : allModes)
        EXPECT_EQ(Delay::GetInterpolationMode(Delay::GetInterpolationModeName(mode)),
                  mode == unnamedMode ? Delay::allpass : mode);
    EXPECT_EQ(Delay::GetInterpolationMode("cubic"), Delay::allpass);
}

}  // namespace
