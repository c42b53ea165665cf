#include "dsp/hilbert_transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <vector>

namespace {

using orvandsp::HilbertTransform;

// The response of one channel at a frequency: the correlation with a complex exponential over whole periods, after
// the start has faded.
std::complex<double> Response(std::vector<float> const& signal, std::size_t from, double cyclesPerSample) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = from; n < signal.size(); ++n)
        sum += static_cast<double>(signal[n]) *
               std::polar(1.0, -2.0 * std::numbers::pi * cyclesPerSample * static_cast<double>(n));
    return sum * 2.0 / static_cast<double>(signal.size() - from);
}

// Red if one corner is wrong, if the chains change places, or if a section isn't an allpass.
TEST(HilbertTransform, OutputsAreNinetyDegreesApart) {
    for (const float rate : {44100.0f, 96000.0f}) {
        for (const double frequency : {20.0, 100.0, 1000.0, 5000.0, 12000.0}) {
            HilbertTransform hilbert;
            hilbert.Configure(rate, 512, true);
            const std::size_t length = static_cast<std::size_t>(rate);  // 1 s: whole periods, and the half that is read
            std::vector<float> left(length);
            std::vector<float> right(length);
            for (std::size_t n = 0; n < length; ++n)
                left[n] = static_cast<float>(
                    std::cos(2.0 * std::numbers::pi * frequency * static_cast<double>(n) / static_cast<double>(rate)));
            float* outputs[] = {left.data(), right.data()};
            float* inputs[] = {left.data()};  // in place
            hilbert.Process(outputs, inputs, length, orvandsp::allActiveInputs);

            const std::complex<double> first = Response(left, length / 2, frequency / static_cast<double>(rate));
            const std::complex<double> second = Response(right, length / 2, frequency / static_cast<double>(rate));
            EXPECT_NEAR(std::abs(first), 1.0, 1e-3) << frequency << " Hz at " << rate;
            EXPECT_NEAR(std::abs(second), 1.0, 1e-3) << frequency << " Hz at " << rate;
            const double degrees = std::arg(second / first) * 180.0 / std::numbers::pi;
            EXPECT_NEAR(degrees, 90.0, 1.0) << frequency << " Hz at " << rate;
        }
    }
}

// Red if a run-away state survives the block, or if an inactive input lets old samples through or moves the filters.
TEST(HilbertTransform, RecoversAndWaits) {
    HilbertTransform hilbert;
    hilbert.Configure(48000.0f, 4, true);
    float left[4] = {std::numeric_limits<float>::quiet_NaN(), 1, 1, 1};
    float right[4];
    float* outputs[] = {left, right};
    hilbert.Process(outputs, outputs, 4, orvandsp::allActiveInputs);
    std::fill_n(left, 4, 0.0f);
    hilbert.Process(outputs, outputs, 4, orvandsp::allActiveInputs);
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(left[i] == 0.0f && right[i] == 0.0f) << i;

    HilbertTransform twin;
    twin.Configure(48000.0f, 4, true);
    const short inactive[] = {0};
    float other[2][4];
    float* otherOutputs[] = {other[0], other[1]};
    for (const bool wait : {false, true, false}) {
        float input[4] = {1, -2, 3, -4};
        float* inputs[] = {input};
        if (wait) {
            twin.Process(otherOutputs, inputs, 4, inactive);
            EXPECT_EQ(other[0][3], 0.0f);
            EXPECT_EQ(other[1][0], 0.0f);
        } else {
            hilbert.Process(outputs, inputs, 4, orvandsp::allActiveInputs);
            twin.Process(otherOutputs, inputs, 4, orvandsp::allActiveInputs);
        }
    }
    for (int i = 0; i < 4; ++i) EXPECT_EQ(left[i], other[0][i]) << i;
}

}  // namespace
