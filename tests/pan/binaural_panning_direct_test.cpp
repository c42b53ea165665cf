#include "pan/binaural/binaural_panning_direct.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <span>
#include <string>

#include "dsp/orvan_dsp_exception.h"
#include "hrtf/hrtf.h"
#include "pan/panning_support.h"
#include "pan/set_file.h"
#include "support/allocation_count.h"
#include "support/clicks.h"
#include "support/frequency_response.h"
#include "support/signals.h"
#include "support/temporary_file.h"

namespace {

using Lume::BinauralPanningDirect;
using Lume::CartesianVector;

constexpr double rate = 44100.0;

/// Frequency response of a set of biquads: gain, then b1, b2, a1, a2 of each stage.
std::complex<double> BiquadsAt(std::span<float const> set, double frequency) {
    const std::complex<double> q = std::polar(1.0, -2.0 * std::numbers::pi * frequency);
    const auto tap = [&](std::size_t i) { return static_cast<double>(set[i]); };
    std::complex<double> response = tap(0);
    for (std::size_t i = 1; i + 3 < set.size(); i += 4)
        response *= (1.0 + tap(i) * q + tap(i + 1) * q * q) / (1.0 + tap(i + 2) * q + tap(i + 3) * q * q);
    return response;
}

// Red if ears, directions or coefficients are mixed up, if a delay has the wrong sign, or if the level is wrong.
TEST(BinauralPanningDirect, RendersTheFiltersAndDelaysOfTheNearestDirection) {
    const Lume::Hrtf set("");
    BinauralPanningDirect panner(1, 2);
    for (const CartesianVector position : {At(0.0), At(90.0), At(-37.0, 20.0), At(171.0, -38.0, 0.7), At(5.0, 85.0)}) {
        PlaceAndWait(panner, position);
        const Channels out = ImpulseResponses(panner, 4096);
        Lume::HrtfPoint const& point = set.GetNearestHrtfPoint(position);
        const double half = 0.5 * static_cast<double>(point.itd);
        const double common = std::max(std::abs(half), 1.0);
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (const double hertz : {200.0, 700.0, 2000.0, 8000.0}) {
                const double delaySeconds = (ear == 0 ? common + half : common - half) * 0.001;
                const std::complex<double> expected =
                    BiquadsAt(std::span(&point.coefficients[ear * 25], 25), hertz / rate) *
                    std::polar(std::numbers::sqrt2 / 2.0, -2.0 * std::numbers::pi * hertz * delaySeconds);
                const std::complex<double> measured = ResponseAt(out.data[ear], hertz / rate);
                EXPECT_NEAR(std::abs(measured), std::abs(expected), 1e-4) << hertz;
                // The delay's allpass is exact at low frequencies only.
                EXPECT_NEAR(std::arg(measured / expected), 0.0, hertz < 1000.0 ? 2e-3 : 9.0) << hertz;
            }
    }
}

// Red if a source that comes later doesn't sound like one that was there from the beginning.
TEST(BinauralPanningDirect, TakesMoreSources) {
    BinauralPanningDirect late(1, 2), early(1, 2);
    for (auto* panner : {&late, &early}) panner->Configure(48000.0f, 64, true);
    late.SetNumInputs(2);
    late.SetSourcePosition(1, At(-70.0), false);
    early.SetSourcePosition(0, At(-70.0), false);
    const short onlySecond[] = {0, 1};
    Channels in(2, 1024, 0.0f), a(2, 1024, 0.0f), b(2, 1024, 0.0f);
    for (float* channel : in.pointers) std::ranges::copy(MakeNoise(1, 1024), channel);
    for (std::size_t i = 0; i < 1024; i += 64) {
        late.Process(a.From(i).data(), in.From(i).data(), 64, onlySecond);
        early.Process(b.From(i).data(), in.From(i).data(), 64, orvandsp::allActiveInputs);
    }
    EXPECT_EQ(a.data, b.data);
}

/// A file of two directions, left and right.
template <typename Coefficient>
std::string TwoDirections(char const* dataType, char const* filterType, std::uint32_t length, std::uint32_t channels,
                          Coefficient&& coefficient) {
    return SetFile({dataType, filterType, length, channels, {{-1.0f, 0.0f, 0.0f}, {1.0f, 0.0f, 0.0f}}, {-0.5, 0.5}},
                   coefficient);
}

// Red if the two numberings of filter types are mixed up, if ears share taps, if the tap beyond the set is not 0 or is
// read behind the set's memory, if a delay acts that lies in the responses already, or if the first block allocates.
TEST(BinauralPanningDirect, TakesImpulseResponses) {
    const auto tap = [](std::uint32_t id, std::uint32_t i) { return static_cast<float>(id * 100 + 100 + i) / 1024.0f; };
    const TemporaryFile file("two.hrtf", TwoDirections("Binaural", "FIR", 64, 2, tap));
    for (char const* method : {"timedomain", "fftconvolution"}) {
        BinauralPanningDirect panner(1, 2);
        ASSERT_TRUE(panner.LoadFromFile(file.name.c_str()));
        EXPECT_EQ(panner.GetHrtfHeaderInfos()->numCoefficients, 64u);
        panner.SetFIRFiltersImplementationMethod(method);
        Channels both(2, 512, 0.0f);
        const long before = AllocationCount();
        panner.Process(both.pointers.data(), both.pointers.data(), 512, orvandsp::allActiveInputs);
        EXPECT_EQ(AllocationCount(), before);
        for (const std::uint32_t id : {0u, 1u}) {
            PlaceAndWait(panner, At(id == 0 ? -80.0 : 100.0));
            const Channels out = ImpulseResponses(panner);
            // The direct form has its first two taps at the same sample.
            const std::uint32_t early = method[0] == 't' ? 1 : 0;
            for (std::uint32_t ear : {0u, 1u})
                for (std::uint32_t n = 0; n < 100; ++n) {
                    float expected = n + early < 64 ? tap(id, ear * 64 + n + early) : 0.0f;
                    if (n < early) expected += tap(id, ear * 64);
                    ASSERT_NEAR(out.data[ear][n], expected * 0.70710678f, 1e-6f) << method << " " << ear << " " << n;
                }
        }
        // And back: the built-in set has biquads again.
        ASSERT_TRUE(panner.LoadFromFile("kemar"));
        EXPECT_EQ(panner.GetHrtfHeaderInfos()->numPoints, 710u);
        PlaceAndWait(panner, At(90.0));
        EXPECT_GT(LevelDb(ImpulseResponses(panner).data[1]), -60.0);
    }
}

// Red if a set that doesn't suit, or a file that can't be read, changes what is heard.
TEST(BinauralPanningDirect, KeepsItsSetWhenAnotherDoesNotSuit) {
    const auto pass = [](std::uint32_t, std::uint32_t i) { return i % 5 == 0 ? 0.25f : 0.0f; };
    BinauralPanningDirect panner(1, 2);
    const auto loads = [&](char const* dataType, char const* filterType, std::uint32_t numChannels) {
        const TemporaryFile file("set.hrtf", TwoDirections(dataType, filterType, 5, numChannels, pass));
        return panner.LoadFromFile(file.name.c_str());
    };
    ASSERT_TRUE(loads("Binaural", "BiquadCells", 2));
    EXPECT_FALSE(loads("Binaural", "FFT", 2));
    EXPECT_FALSE(loads("Binaural", "BiquadCells", 1));
    EXPECT_FALSE(loads("BinauralToTransauralShufflerSymmetric", "BiquadCells", 2));
    EXPECT_THROW(panner.LoadFromFile("there is no such file.hrtf"), orvandsp::OrvanDspException);
    PlaceAndWait(panner, At(90.0));
    const Channels out = ImpulseResponses(panner);
    // Gain 0.25 for both ears; the left one hears 1.25 ms later than nothing, the right one 0.75 ms.
    EXPECT_NEAR(GainDbAt(out.data[0], 0.01), -12.0412 - 3.0103, 1e-3);
    EXPECT_NEAR(std::arg(ResponseAt(out.data[0], 100.0 / rate)), -2.0 * std::numbers::pi * 0.125, 1e-3);
    EXPECT_NEAR(std::arg(ResponseAt(out.data[1], 100.0 / rate)), -2.0 * std::numbers::pi * 0.075, 1e-3);
}

// Around the head, over a steady tone, by a degree every 20 ms. Red if filters or delays change more roughly than their
// crossfades and glides allow. The filters step every five degrees; a crossfade of 5 ms is as wide as the band that the
// meter leaves out, and is what remains.
TEST(BinauralPanningDirect, MovesWithoutClicks) {
    // Worst of these: -38.4, -35.4 and, with a crossfade of 15 ms, -47.9 dB.
    for (const auto& [tone, crossFade, limit] :
         {std::array{1000.0, 5.0, -37.0}, {3000.0, 5.0, -34.0}, {1000.0, 15.0, -46.5}}) {
        Lume::BinauralPanningDirect panner(1, 2);
        panner.Configure(48000.0f, 64, true);
        panner.SetFilterCrossFadeTime(static_cast<float>(crossFade));
        std::vector<std::vector<float>> recording(2);
        Channels in(1, 64, 0.0f), out(2, 64, 0.0f);
        std::size_t sample = 0;
        const int numBlocks = 15 * 600;
        for (int block = 0; block < numBlocks; ++block) {
            // A steady tone at both ends, for the meter.
            const int step = std::clamp(block / 15 - 120, 0, 360);
            if (block % 15 == 0) panner.SetSourcePosition(0, At(static_cast<double>(step)), false);
            for (float& x : in.data[0])
                x = static_cast<float>(
                    std::sin(2.0 * std::numbers::pi * tone / 48000.0 * static_cast<double>(sample++)));
            panner.Process(out.pointers.data(), in.pointers.data(), 64, orvandsp::allActiveInputs);
            for (const std::size_t e : {0u, 1u})
                recording[e].insert(recording[e].end(), out.pointers[e], out.pointers[e] + 64);
        }
        const ToneResidual residual = MeasureToneResidual(recording, 48000.0, tone);
        EXPECT_LT(residual.peakDb, limit) << tone << " Hz, at " << residual.peakSeconds << " s";
    }
}

}  // namespace
