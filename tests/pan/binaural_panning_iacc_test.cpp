#include "pan/binaural_panning_iacc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>

#include "pan/panning_support.h"
#include "support/allocation_count.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

using Lume::BinauralPanningIACC;
using orvandsp::allActiveInputs;

constexpr std::size_t length = 4096;

/// Lets the filters that a new panner fades in come to rest.
void Settle(BinauralPanningIACC& panner) {
    Channels silence(2, 512, 0.0f), out(2, 512, 0.0f);
    panner.Process(out.pointers.data(), silence.pointers.data(), 512, allActiveInputs);
    panner.Clear();
}

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

// Red if sum and difference change places, or if the filters don't do what the panner is for: the ears agree at low
// frequencies, as they do in a diffuse field, and not above 2 kHz.
TEST(BinauralPanningIACC, GivesTheEarsTheCorrelationOfADiffuseField) {
    BinauralPanningIACC panner(2, 2);
    Settle(panner);
    const Channels first = Responses(panner, 0, false, allActiveInputs);
    const Channels second = Responses(panner, 1, false, allActiveInputs);
    const auto at = [&](double hertz) {
        const double f = hertz / 44100.0;
        const std::complex<double> l0 = ResponseAt(first.data[0], f), r0 = ResponseAt(first.data[1], f);
        const std::complex<double> l1 = ResponseAt(second.data[0], f), r1 = ResponseAt(second.data[1], f);
        EXPECT_NEAR(std::abs(l1 - r0), 0.0, 1e-4) << hertz;  // the second input is the first one mirrored
        const double left = std::norm(l0) + std::norm(l1), right = std::norm(r0) + std::norm(r1);
        EXPECT_NEAR(left, right, 1e-4);
        return std::pair{std::real(l0 * std::conj(r0) + l1 * std::conj(r1)) / std::sqrt(left * right), left};
    };
    for (const double hertz : {100.0, 150.0, 300.0}) EXPECT_GT(at(hertz).first, 0.5) << hertz;
    for (const double hertz : {2000.0, 5000.0, 15000.0}) EXPECT_NEAR(at(hertz).first, 0.0, 0.15) << hertz;
    EXPECT_NEAR(at(5000.0).second, 2.0, 0.1);  // each ear as loud as both inputs together
}

// Red if the fixed tables lose a digit or a sign.
TEST(BinauralPanningIACC, FiltersAreTheTables) {
    const double tables[2][9] = {
        {0.501261, -1.933375, 0.947239, -1.926606, 0.940695, -1.949527, 0.950952, -1.961725, 0.962924},
        {0.496764, -1.917755, 0.931358, -1.924767, 0.938100, -1.980399, 0.981319, -1.960149, 0.961326}};
    BinauralPanningIACC panner(2, 2);
    Settle(panner);
    const Channels out = Responses(panner, 0, false, allActiveInputs);
    for (const double frequency : {0.001, 0.01, 0.1, 0.4}) {
        const std::complex<double> left = ResponseAt(out.data[0], frequency);
        const std::complex<double> right = ResponseAt(out.data[1], frequency);
        for (const int difference : {0, 1}) {
            double const* const t = tables[difference];
            const std::complex<double> q = std::polar(1.0, -2.0 * std::numbers::pi * frequency);
            const std::complex<double> expected = t[0] * (1.0 + q * (t[1] + q * t[2])) / (1.0 + q * (t[3] + q * t[4])) *
                                                  (1.0 + q * (t[5] + q * t[6])) / (1.0 + q * (t[7] + q * t[8]));
            const std::complex<double> measured =
                (difference ? left - right : left + right) * 0.5 / std::numbers::sqrt2;
            EXPECT_NEAR(std::abs(measured - expected), 0.0, 3e-4) << frequency << " " << difference;
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
    const short onlyFirst[] = {1, 0, 1, 1, 1, 1, 1, 1};
    const short onlySecond[] = {0, 1, 1, 1, 1, 1, 1, 1};
    const short onlyOthers[] = {0, 0, 1, 1, 1, 1, 1, 1};
    for (const unsigned int input : {0u, 1u}) {
        const Channels both = Responses(panner, input, false, allActiveInputs);
        const Channels alone = Responses(panner, input, false, input == 0 ? onlyFirst : onlySecond);
        const Channels adding = Responses(panner, input, true, onlyOthers);
        for (std::size_t ear = 0; ear < 2; ++ear) {
            EXPECT_EQ(both.data[ear], alone.data[ear]);
            for (std::size_t n = 0; n < 64; ++n) EXPECT_NEAR(adding.data[ear][n], 2.0f * both.data[ear][n], 1e-6f);
        }
    }
    EXPECT_EQ(Responses(panner, 3, false, allActiveInputs).data, Channels(2, length, 0.0f).data);
    EXPECT_EQ(Responses(panner, 1, false, onlyOthers).data, Channels(2, length, 0.0f).data);
}

TEST(BinauralPanningIACC, WorksInPlaceWithoutAllocation) {
    BinauralPanningIACC panner(2, 2), twin(2, 2);
    Channels a(2, 1024, 0.0f), b(2, 1024, 0.5f);
    for (const std::uint32_t c : {0u, 1u}) std::ranges::copy(MakeNoise(c + 1, 1024), a.pointers[c]);
    for (auto* each : {&panner, &twin}) each->Configure(48000.0f, 64, true);
    for (std::size_t i = 0; i < 1024; i += 64) {
        twin.ProcessAdding(b.From(i).data(), a.From(i).data(), 64, allActiveInputs);
        auto channels = a.From(i);
        const long allocations = AllocationCount();
        panner.Process(channels.data(), channels.data(), 64, allActiveInputs);
        EXPECT_EQ(AllocationCount(), allocations);
    }
    for (std::size_t n = 0; n < 1024; ++n) ASSERT_NEAR(b.data[1][n] - 0.5f, a.data[1][n], 1e-6f) << n;

    std::unique_ptr<Lume::Pan> made(Lume::Pan::factory(8, 2, "binaural", "diffuse"));
    EXPECT_NE(dynamic_cast<BinauralPanningIACC*>(made.get()), nullptr);
    made.reset(Lume::Pan::factory(1, 2, "binaural", "diffuse"));
    EXPECT_EQ(made->GetNumInputs(), 0u);
}

}  // namespace
