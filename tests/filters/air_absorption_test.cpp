#include "filters/air_absorption.h"

#include <gtest/gtest.h>

#include <vector>

#include "filters/shelf_prototype.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

using Lume::AirAbsorption;

// Red if the loss doesn't grow with the distance and the square of the frequency, if the medium band doesn't hold a
// thousandth of it, or if a distance isn't folded to 0...100 m.
TEST(AirAbsorption, LossFollowsDistanceAndFrequency) {
    AirAbsorption air;
    air.SetDistance(100.0f);
    const std::vector<float> far = ImpulseResponse(air, 8192);
    EXPECT_NEAR(GainDbAt(far, 0.5), -20.0, 0.01);
    EXPECT_NEAR(GainDbAt(far, 1.0 / 44100.0), 0.0, 0.005);
    for (const float same : {-100.0f, 250.0f, -1e6f}) {
        air.SetDistance(same);
        EXPECT_EQ(ImpulseResponse(air, 8192), far) << same;
    }
    air.SetDistance(25.0f);
    EXPECT_NEAR(GainDbAt(ImpulseResponse(air, 8192), 0.5), -5.0, 0.01);
    air.SetRolloffFrequency(5000.0f);
    EXPECT_NEAR(GainDbAt(ImpulseResponse(air, 8192), 0.5), -1.25, 0.01);
    air.SetDistance(0.0f);
    EXPECT_NEAR(GainDbAt(ImpulseResponse(air, 8192), 0.5), 0.0, 1e-4);

    // Each step in full: 20 dB at 10 kHz, and a thousandth of it 1.5 decades below.
    for (const double frequency : {100.0, 316.2, 1000.0, 4000.0, 16000.0}) {
        const double expected =
            -20.0 + LowShelfDb(0.02, 316.2278, frequency, 44100.0) + LowShelfDb(19.98, 10000.0, frequency, 44100.0);
        EXPECT_NEAR(GainDbAt(far, frequency / 44100.0), expected, 1e-3) << frequency;
    }
}

// Red if the rolloff frequency isn't limited by the rate, or not again when the rate falls.
TEST(AirAbsorption, RolloffStaysBelowAThirdOfTheRate) {
    const auto nyquistLoss = [](float khz) { return -0.2 * static_cast<double>(khz * khz); };
    AirAbsorption air;
    air.SetSamplerate(96000.0f);
    air.SetDistance(100.0f);
    air.SetRolloffFrequency(20000.0f);
    EXPECT_NEAR(GainDbAt(ImpulseResponse(air, 8192), 0.5), nyquistLoss(20.0f), 0.5);
    air.SetSamplerate(44100.0f);
    EXPECT_NEAR(GainDbAt(ImpulseResponse(air, 8192), 0.5), nyquistLoss(13.9456f), 0.05);
    air.SetSamplerate(96000.0f);  // what the limit took is gone
    EXPECT_NEAR(GainDbAt(ImpulseResponse(air, 8192), 0.5), nyquistLoss(13.9456f), 0.05);
    air.SetRolloffFrequency(-3.0f);
    EXPECT_NEAR(GainDbAt(ImpulseResponse(air, 8192), 0.1), 0.0, 1e-3);
}

TEST(AirAbsorption, ResetIsHeardWithTheNextSetter) {
    AirAbsorption air;
    air.SetDistance(100.0f);
    air.SetRolloffFrequency(4000.0f);
    const std::vector<float> before = ImpulseResponse(air, 8192);
    air.ResetToDefaults();
    EXPECT_EQ(ImpulseResponse(air, 8192), before);
    air.SetDistance(50.0f);
    EXPECT_NEAR(GainDbAt(ImpulseResponse(air, 8192), 0.5), -10.0, 0.01);
}

}  // namespace
