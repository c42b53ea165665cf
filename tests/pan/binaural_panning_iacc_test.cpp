#include "pan/binaural/binaural_panning_iacc.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "pan/panning_support.h"
#include "support/frequency_response.h"

namespace {

using Lume::BinauralPanningIACC;
using orvandsp::allActiveInputs;

constexpr std::size_t length = 4096;

/// Response of both outputs to an impulse on one input.
Channels Responses(BinauralPanningIACC& panner, unsigned int input, bool adding, short const* active) {
    Channels in(8, length, 0.0f), out(2, length, 0.0f);
    in.data[input][0] = 1.0f;
    if (adding)
        panner.ProcessAdding(out.pointers.data(), in.pointers.data(), length, active);
    else
        panner.Process(out.pointers.data(), in.pointers.data(), length, active);
    panner.Clear();
    return out;
}

/// Lets the filters that a new panner fades in come to rest.
void Settle(BinauralPanningIACC& panner) {
    Responses(panner, 7, false, allActiveInputs);
}

// Red if sum and difference change places, if the filters don't do what the panner is for (the ears agree at low
// frequencies, as they do in a diffuse field, and not above 2 kHz), or if the fixed tables lose a digit or a sign.
TEST(BinauralPanningIACC, GivesTheEarsTheCorrelationOfADiffuseField) {
    const double tables[2][9] = {
        {0.501261, -1.933375, 0.947239, -1.926606, 0.940695, -1.949527, 0.950952, -1.961725, 0.962924},
        {0.496764, -1.917755, 0.931358, -1.924767, 0.938100, -1.980399, 0.981319, -1.960149, 0.961326}};
    BinauralPanningIACC panner(2, 2);
    Settle(panner);
    const Channels first = Responses(panner, 0, false, allActiveInputs);
    const Channels second = Responses(panner, 1, false, allActiveInputs);
    for (const double hertz : {100.0, 150.0, 300.0, 2000.0, 5000.0, 15000.0}) {
        SCOPED_TRACE(hertz);
        const double f = hertz / 44100.0;
        const std::complex<double> l0 = ResponseAt(first.data[0], f), r0 = ResponseAt(first.data[1], f);
        const std::complex<double> l1 = ResponseAt(second.data[0], f), r1 = ResponseAt(second.data[1], f);
        EXPECT_NEAR(std::abs(l1 - r0), 0.0, 1e-4);  // the second input is the first one mirrored
        EXPECT_NEAR(std::abs(r1 - l0), 0.0, 1e-4);
        const double power = std::norm(l0) + std::norm(l1);
        const double correlation = std::real(l0 * std::conj(r0) + l1 * std::conj(r1)) / power;
        EXPECT_NEAR(correlation, hertz < 500.0 ? 0.75 : 0.0, hertz < 500.0 ? 0.25 : 0.15);
        EXPECT_NEAR(power, 2.0, hertz < 3000.0 ? 2.0 : 0.1);  // each ear as loud as both inputs together

        for (const int difference : {0, 1}) {
            double const* const t = tables[difference];
            const std::complex<double> q = std::polar(1.0, -2.0 * std::numbers::pi * f);
            const std::complex<double> expected = t[0] * (1.0 + q * (t[1] + q * t[2])) / (1.0 + q * (t[3] + q * t[4])) *
                                                  (1.0 + q * (t[5] + q * t[6])) / (1.0 + q * (t[7] + q * t[8]));
            const std::complex<double> measured = (difference ? l0 - r0 : l0 + r0) * 0.5 / std::numbers::sqrt2;
            EXPECT_NEAR(std::abs(measured - expected), 0.0, 3e-4) << difference;
        }
    }
}

// Red if the two forms are made alike: adding raises the two channels that it reads by those that it doesn't, and by
// the number that the panner was built with, whatever it is told later; and it reads inputs that aren't active.
TEST(BinauralPanningIACC, AddingStandsForAllInputs) {
    BinauralPanningIACC panner(8, 2);
    panner.SetNumInputs(2);
    EXPECT_EQ(panner.GetNumInputs(), 8u);
    Settle(panner);
    const short onlyOne[2][8] = {{1, 0, 1, 1, 1, 1, 1, 1}, {0, 1, 1, 1, 1, 1, 1, 1}};
    const short onlyOthers[] = {0, 0, 1, 1, 1, 1, 1, 1};
    for (const unsigned int input : {0u, 1u}) {
        const Channels both = Responses(panner, input, false, allActiveInputs);
        EXPECT_EQ(both.data, Responses(panner, input, false, onlyOne[input]).data);
        const Channels adding = Responses(panner, input, true, onlyOthers);
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (std::size_t n = 0; n < 64; ++n) EXPECT_NEAR(adding.data[ear][n], 2.0f * both.data[ear][n], 1e-6f);
    }
    EXPECT_EQ(Responses(panner, 3, false, allActiveInputs).data, Channels(2, length, 0.0f).data);
    EXPECT_EQ(Responses(panner, 1, false, onlyOthers).data, Channels(2, length, 0.0f).data);
}

// Red if an input is left out, if sum and difference change places, or if the two forms differ: with gains of its own
// each input is heard as loud as they say, in both ears alike or against one another.
TEST(BinauralPanningIACC, HearsAllInputsByItsOwnGains) {
    orvandsp::Matrix<float> gains(8, 2, 0.0f);
    for (unsigned int i = 0; i < 8; ++i) gains[i][i % 2] = 0.5f * static_cast<float>(i + 1);
    BinauralPanningIACC panner(8, 2, gains);
    Settle(panner);
    for (unsigned int input = 0; input < 8; ++input) {
        const Channels heard = Responses(panner, input, false, allActiveInputs);
        EXPECT_EQ(heard.data, Responses(panner, input, true, allActiveInputs).data);
        double power = 0.0;
        for (std::size_t n = 0; n < length; ++n) {
            const double left = heard.data[0][n], right = heard.data[1][n];
            power += left * left + right * right;
            EXPECT_EQ(left, input % 2 == 0 ? right : -right);
        }
        EXPECT_NEAR(std::sqrt(2.0 * power), gains[input][input % 2], 0.05f * gains[input][input % 2]) << input;
    }
}

}  // namespace
