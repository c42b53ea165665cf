#include "dsp/hilbert_transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <span>
#include <vector>

#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

using orvandsp::HilbertTransform;

// Red if one corner is wrong, if the chains change places, or if a section isn't an allpass.
TEST(HilbertTransform, OutputsAreNinetyDegreesApart) {
    for (const float rate : {44100.0f, 96000.0f}) {
        for (const double frequency : {20.0, 100.0, 1000.0, 5000.0, 12000.0}) {
            HilbertTransform hilbert;
            hilbert.Configure(rate, 512, true);
            const auto length = static_cast<std::size_t>(rate);  // 1 s: whole periods, and the half that is read
            const double cycles = frequency / static_cast<double>(rate);
            std::vector<float> left = MakeSine(frequency, static_cast<double>(rate), length), right(length);
            float* outputs[] = {left.data(), right.data()};
            hilbert.Process(outputs, outputs, length, orvandsp::allActiveInputs);  // in place

            const std::size_t half = length / 2;
            const auto scale = 2.0 / static_cast<double>(half);
            const std::complex<double> first = scale * ResponseAt(std::span(left).last(half), cycles);
            const std::complex<double> second = scale * ResponseAt(std::span(right).last(half), cycles);
            EXPECT_NEAR(std::abs(first), 1.0, 1e-3) << frequency << " Hz at " << rate;
            EXPECT_NEAR(std::abs(second), 1.0, 1e-3) << frequency << " Hz at " << rate;
            EXPECT_NEAR(std::arg(second / first) * 180.0 / std::numbers::pi, 90.0, 1.0)
                << frequency << " Hz at " << rate;
        }
    }
}

// Red if a run-away state survives the block, or if an inactive input lets old samples through or moves the filters.
TEST(HilbertTransform, RecoversAndWaits) {
    HilbertTransform hilbert;
    hilbert.Configure(48000.0f, 4, true);
    float left[4], right[4];
    float* outputs[] = {left, right};
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), 1e30f}) {
        for (const float first : {bad, 0.0f}) {
            std::fill_n(left, 4, first);
            hilbert.Process(outputs, outputs, 4, orvandsp::allActiveInputs);
        }
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(left[i] == 0.0f && right[i] == 0.0f) << bad << " " << i;
    }

    HilbertTransform twin;
    twin.Configure(48000.0f, 4, true);
    const short inactive[] = {0};
    float input[] = {1, -2, 3, -4}, other[2][4];
    float* inputs[] = {input};
    float* otherOutputs[] = {other[0], other[1]};
    for (const bool wait : {false, true, false}) {
        twin.Process(otherOutputs, inputs, 4, wait ? inactive : orvandsp::allActiveInputs);
        if (wait)
            EXPECT_TRUE(other[0][3] == 0.0f && other[1][0] == 0.0f);
        else
            hilbert.Process(outputs, inputs, 4, orvandsp::allActiveInputs);
    }
    for (int i = 0; i < 4; ++i) EXPECT_EQ(left[i], other[0][i]) << i;
}

}  // namespace
