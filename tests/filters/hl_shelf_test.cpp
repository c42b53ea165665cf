#include "filters/hl_shelf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "filters/shelf_prototype.h"
#include "filters/unitary_hl_shelf.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

using Lume::HLShelf;

// Red if a gain or crossover reaches the wrong band, if a crossover isn't the geometric middle of its step, if the rate
// isn't followed, or if the overall gain is missing.
TEST(HLShelf, FollowsTheAnalogShelvesAtEveryFrequency) {
    for (const float rate : {22050.0f, 44100.0f, 96000.0f}) {
        HLShelf shelf;
        shelf.SetSamplerate(rate);
        for (const auto& [low, med, high] : {std::array{12.0, -3.0, -15.0}, {-30.0, 0.0, 6.0}, {6.0, 6.0, 6.0}}) {
            shelf.SetAll(-4.0f, static_cast<float>(low), static_cast<float>(med), static_cast<float>(high), 300.0f,
                         5000.0f);
            EXPECT_TRUE(shelf.IsStable());
            const std::vector<float> response = ImpulseResponse(shelf, 32768);
            EXPECT_NEAR(GainDbAt(response, 0.0), -4.0 + low, 0.01);
            EXPECT_NEAR(GainDbAt(response, 0.5), -4.0 + high, 0.01);
            for (const double frequency : {30.0, 300.0, 1200.0, 5000.0, 9000.0}) {
                const auto fs = static_cast<double>(rate);
                const double expected = -4.0 + high + LowShelfDb(low - med, 300.0, frequency, fs) +
                                        LowShelfDb(med - high, 5000.0, frequency, fs);
                EXPECT_NEAR(GainDbAt(response, frequency / fs), expected, 0.01) << frequency << " Hz, rate " << rate;
            }
        }
    }
}

// Red if the closed form loses a peak between 0 Hz and half the rate, takes the wrong root, or takes a pole on the unit
// circle for a stable one.
TEST(HLShelf, TellsItsLargestMagnitude) {
    HLShelf shelf;
    for (const auto& [low, med, high] : {std::array{-9.0, -3.0, -15.0}, {-3.0, -9.0, -4.0}, {2.0, 8.0, 3.0}}) {
        shelf.SetAll(-20.0f, static_cast<float>(low), static_cast<float>(med), static_cast<float>(high), 300.0f,
                     2500.0f);
        const std::vector<float> response = ImpulseResponse(shelf, 4096);
        double largest = 0.0;
        for (int k = 0; k <= 500; ++k) largest = std::max(largest, std::abs(ResponseAt(response, 0.001 * k)));
        EXPECT_NEAR(20.0 * std::log10(shelf.LargestMagnitude() * static_cast<double>(shelf.GetOverallGain()) / largest),
                    0.0, 2e-3);
    }
    shelf.SetAll(0.0f, 0.0f, -400.0f, -400.0f, 20.0f, 4000.0f);
    EXPECT_TRUE(std::isinf(shelf.LargestMagnitude()));
}

// Crossovers at and past both ends, and the bands that a decay time of 0.1 s asks of a long delay. Red if the tangent
// passes its pole at half the sample rate or isn't kept from it for a crossover above, or if the ratio of two bands
// becomes zero or infinite.
TEST(HLShelf, StaysStableAndFiniteAtExtremes) {
    for (const float rate : {8000.0f, 44100.0f, 192000.0f}) {
        HLShelf shelf;
        shelf.SetSamplerate(rate);
        for (const float high : {rate * 0.499f, rate * 0.5f, rate, 1e6f})
            for (const float low : {-10.0f, 20.0f, rate * 0.4f, rate * 0.5f, rate}) {
                SCOPED_TRACE(testing::Message() << low << " " << high << " " << rate);
                shelf.SetAll(0.0f, 12.0f, 6.0f, -12.0f, low, high);
                for (const float sample : ImpulseResponse(shelf, 20000)) ASSERT_LT(std::abs(sample), 4.1f);
                // At 0 Hz and at half the rate a pole and its zero meet on the circle, where the test says no.
                EXPECT_TRUE(shelf.IsStable() || low <= 0.0f || low >= rate * 0.49f);
            }
        for (const float low : {-10.0f, -300.0f, -9000.0f})
            for (const float medium : {-10.0f, -900.0f, -9000.0f})
                for (const float high : {-10.0f, -1500.0f, -9000.0f})
                    for (const float crossover : {250.0f, rate / 2.0f}) {
                        shelf.SetAll(0.0f, low, medium, high, crossover, rate / 2.0f);
                        for (const float sample : ImpulseResponse(shelf, 500))
                            ASSERT_LT(std::abs(sample), 1.0f) << low << " " << medium << " " << high << " " << rate;
                    }
    }
}

// The parameters that GetCoefficients returns are those given, not those in force: users see what they set.
TEST(HLShelf, RemembersTheParametersThatItWasGiven) {
    HLShelf shelf, swapped;
    std::vector<float> six(6);
    shelf.SetAll(1.0f, 2.0f, 5.0f, 4.0f, 8000.0f, 250.0f);
    shelf.GetCoefficients(six);
    EXPECT_EQ(six, (std::vector{1.0f, 2.0f, 5.0f, 4.0f, 8000.0f, 250.0f}));
    swapped.SetCoefficients(shelf);
    swapped.SetAll(1.0f, 2.0f, 5.0f, 4.0f, 250.0f, 8000.0f);
    EXPECT_EQ(ImpulseResponse(shelf, 64), ImpulseResponse(swapped, 64));

    const std::vector<float> before = six;
    shelf.SetParameters(
        {.gain = 0.0f, .gainLow = 0.0f, .gainMed = 0.0f, .gainHigh = 0.0f, .freqLow = 500.0f, .freqHigh = 30000.0f});
    shelf.GetCoefficients(six);
    EXPECT_EQ(six, before);
    shelf.SetSamplerate(48000.0f);  // from the working parameters, clamped at the old rate
    shelf.GetCoefficients(six);
    EXPECT_EQ(six, (std::vector{0.0f, 0.0f, 0.0f, 0.0f, 500.0f, 22050.0f}));
}

TEST(HLShelf, OverallGainActsAtOnceAndOutsideTheRecursion) {
    HLShelf shelf;
    shelf.SetAll(0.0f, 10.0f, 0.0f, -10.0f, 250.0f, 4000.0f);
    HLShelf twin = shelf;
    std::vector<float> a = MakeNoise(3, 256), b = a;
    shelf.Process(a.data(), a.data(), 128);
    twin.Process(b.data(), b.data(), 256);
    shelf.SetGain(0.25f);  // an energy
    shelf.Process(a.data() + 128, a.data() + 128, 128);
    for (std::size_t i = 128; i < 256; ++i) EXPECT_NEAR(a[i], 0.5f * b[i], 1e-6f) << i;
    shelf.SetGain(0.0f);
    shelf.Process(a.data(), b.data(), 256);
    EXPECT_EQ(a[255], 0.0f);
}

TEST(UnitaryHLShelf, HasNoOverallGain) {
    HLShelf plain;
    Lume::UnitaryHLShelf unitary;
    plain.SetAll(0.0f, 10.0f, -2.0f, -10.0f, 250.0f, 4000.0f);
    unitary.SetAll(-6.0f, 10.0f, -2.0f, -10.0f, 250.0f, 4000.0f);
    unitary.SetGaindB(20.0f);
    EXPECT_EQ(ImpulseResponse(plain, 512), ImpulseResponse(unitary, 512));
}

// Red if a setter clears, if the present rate clears, or if a new one doesn't; and if one block of 256 is not four
// of 64.
TEST(HLShelf, OnlyANewRateClears) {
    HLShelf shelf;
    shelf.SetAll(0.0f, 20.0f, 0.0f, 0.0f, 250.0f, 4000.0f);
    HLShelf twin = shelf;
    const std::vector<float> input = MakeNoise(5, 256);
    std::vector<float> a = input, b = input;
    shelf.Process(a.data(), a.data(), 256);
    for (std::size_t i = 0; i < 256; i += 64) {
        twin.Process(b.data() + i, b.data() + i, 64);
        twin.SetAll(0.0f, 20.0f, 0.0f, 0.0f, 250.0f, 4000.0f);
        twin.SetSamplerate(44100.0f);
    }
    EXPECT_EQ(a, b);

    shelf.SetSamplerate(48000.0f);
    std::vector<float> silence(64), out(64);
    shelf.Process(out.data(), silence.data(), 64);
    EXPECT_EQ(out, silence);
    shelf.ClearTaps();
    shelf.Process(out.data(), a.data(), 64);
    EXPECT_EQ(out, silence);
}

}  // namespace
