#include "math/fft.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "dsp/orvan_dsp_exception.h"
#include "math/real_transform.h"
#include "support/signals.h"

namespace {

using Fft = orvandsp::FFT<float>;
using Complex = std::complex<float>;

std::vector<Complex> ComplexNoise(std::size_t length) {
    const std::vector<float> parts = MakeNoise(5, 2 * length);
    std::vector<Complex> noise(length);
    for (std::size_t n = 0; n < length; ++n) noise[n] = {parts[2 * n], parts[2 * n + 1]};
    return noise;
}

/// The plain sum in double precision; sign -1 forward, 1 inverse.
std::complex<double> Dft(std::vector<Complex> const& x, std::size_t k, double sign) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < x.size(); ++n) {
        // k n modulo the size, so that the angle keeps its digits.
        const auto turns = static_cast<double>(k * n % x.size()) / static_cast<double>(x.size());
        sum += std::complex<double>(x[n]) * std::polar(1.0, sign * 2.0 * std::numbers::pi * turns);
    }
    return sum;
}

// Red if a twiddle, a sign or the reordering is wrong at any size, or if a scale acts at the wrong stages: stage scales
// that aren't 1 are counted by the net gain. The tolerance is some single-precision roundings per stage, beside values
// of the order sqrt(size).
TEST(Fft, AgreesWithThePlainSum) {
    for (unsigned int size = 1, stages = 0; size <= 1024; size *= 2, ++stages) {
        const Fft fft(size, 0.5f, 3.0f, 0.75f, 2.0f);
        const std::vector<Complex> x = ComplexNoise(size);
        for (const auto direction : {Fft::forward, Fft::inverse}) {
            const bool isForward = direction == Fft::forward;
            const double gain = std::pow(isForward ? 0.5 : 0.75, stages) * (isForward ? 3.0 : 2.0);
            std::vector<Complex> result = x;
            fft.process(result.data(), direction);
            for (std::size_t k = 0; k < size; k += 1 + size / 64) {
                const std::complex<double> expected = gain * Dft(x, k, isForward ? -1.0 : 1.0);
                EXPECT_LT(std::abs(std::complex<double>(result[k]) - expected), 1e-6 * gain * std::sqrt(size) + 1e-7)
                    << "size " << size << ", bin " << k << ", direction " << direction;
            }
        }
    }
}

// Bound for the largest size, where rounding adds up most: back and forth within 110 dB.
TEST(Fft, LargestSizeGoesBackAndForth) {
    constexpr unsigned int size = 1u << 19;
    const Fft fft(size, 0.5f, static_cast<float>(size), 1.0f, 1.0f / static_cast<float>(size));
    const std::vector<Complex> x = ComplexNoise(size);
    std::vector<Complex> y = x;
    for (const auto direction : {Fft::forward, Fft::inverse}) fft.process(y.data(), direction);
    double error = 0.0;
    for (std::size_t n = 0; n < size; ++n) error += static_cast<double>(std::norm(y[n] - x[n]));
    EXPECT_LT(10.0 * std::log10(error / (size * 2.0 / 3.0)), -110.0);  // the noise has 2/3 a sample
}

TEST(Fft, RefusesOtherSizes) {
    testing::internal::CaptureStderr();
    for (const unsigned int size : {0u, 3u, 96u, 1u << 20}) {
        try {
            const Fft fft(size, 1.0f, 1.0f, 1.0f, 1.0f);
            ADD_FAILURE() << size;
        } catch (orvandsp::OrvanDspException const& exception) {
            EXPECT_STREQ(exception.what(), "FFT: size not power of 2");
        }
    }
    testing::internal::GetCapturedStderr();
}

TEST(Fft, MultiplyFormsComplexProductsInPlaceToo) {
    std::vector<Complex> a = {{1.0f, 2.0f}, {0.0f, -1.0f}};
    const std::vector<Complex> b = {{3.0f, -1.0f}, {0.5f, 4.0f}};
    orvandsp::Multiply<float, float>(a, b, a);
    EXPECT_EQ(a, (std::vector<Complex>{{5.0f, 5.0f}, {4.0f, -0.5f}}));
}

// Red if the halves are told apart wrongly, at any size, or if the way back lacks a factor.
TEST(RealTransform, AgreesWithThePlainSumAndComesBack) {
    for (std::size_t size = 4; size <= 1024; size *= 2) {
        const orvandsp::RealTransform transform(size);
        const std::vector<float> noise = MakeNoise(9, size);
        const std::vector<double> signal(noise.begin(), noise.end());
        const orvandsp::Spectrum spectrum = transform.Forward(signal);
        ASSERT_EQ(spectrum.size(), transform.NumBins());
        for (std::size_t k = 0; k < spectrum.size(); k += 1 + size / 64)
            EXPECT_LT(std::abs(spectrum[k] - Dft({noise.begin(), noise.end()}, k, -1.0)),
                      1e-12 * static_cast<double>(size));
        const std::vector<double> back = transform.Inverse(spectrum);
        for (std::size_t n = 0; n < size; ++n) EXPECT_NEAR(back[n], signal[n], 1e-14);
    }
}

// 0.5 + z^-1 has the magnitude of 1 + 0.5 z^-1, which has the least phase, and comes three samples later as a whole.
TEST(RealTransform, LeastPhaseAndDelay) {
    const orvandsp::RealTransform transform(256);
    std::vector<double> magnitude;
    for (auto const& value : transform.Forward(std::vector{0.5, 1.0})) magnitude.push_back(std::abs(value));
    const auto heard = transform.Inverse(transform.Delayed(transform.MinimumPhase(magnitude), 3.0));
    for (std::size_t n = 0; n < 256; ++n) EXPECT_NEAR(heard[n], n == 3 ? 1.0 : n == 4 ? 0.5 : 0.0, 1e-12) << n;
    EXPECT_EQ(transform.FrequencyOf(32, 48000.0), 6000.0);
}

}  // namespace
