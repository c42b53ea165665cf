#include "pan/binaural_panning_direct.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <span>
#include <string>

#include "dsp/orvan_dsp_exception.h"
#include "hrtf/hrtf.h"
#include "pan/panning_support.h"
#include "pan/set_file.h"
#include "support/allocation_count.h"
#include "support/frequency_response.h"
#include "support/signals.h"
#include "support/temporary_file.h"

namespace {

using Lume::BinauralPanningDirect;
using Lume::CartesianVector;
using orvandsp::allActiveInputs;

constexpr double rate = 44100.0;

/// Places the only source and waits until its filters and delays are there.
void Place(BinauralPanningDirect& panner, CartesianVector const& position) {
    Channels silence(1, 512, 0.0f), out(2, 512, 0.0f);
    const auto wait = [&] {
        for (int i = 0; i < 8; ++i) panner.Process(out.pointers.data(), silence.pointers.data(), 512, allActiveInputs);
    };
    panner.SetSourcePosition(0, position, false);
    wait();
    panner.SetSourcePosition(0, position, true);  // a glide ends beside its target, a jump on it
    wait();
}

/// The responses of both ears to an impulse.
Channels ImpulseResponses(BinauralPanningDirect& panner, std::size_t length = 4096) {
    Channels in(1, length, 0.0f), out(2, length, 0.0f);
    in.data[0][0] = 1.0f;
    for (std::size_t i = 0; i < length; i += 512)
        panner.Process(out.From(i).data(), in.From(i).data(), 512, allActiveInputs);
    return out;
}

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
        Place(panner, position);
        const Channels out = ImpulseResponses(panner);
        Lume::HrtfPoint const& point = set.GetNearestHrtfPoint(position);
        const double half = 0.5 * static_cast<double>(point.itd);
        const double common = std::max(std::abs(half), 1.0);
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const double delaySeconds = (ear == 0 ? common + half : common - half) * 0.001;
            const std::span coefficients(&point.coefficients[ear * 25], 25);
            for (const double hertz : {200.0, 700.0, 2000.0, 8000.0}) {
                const std::complex<double> expected =
                    BiquadsAt(coefficients, hertz / rate) *
                    std::polar(std::numbers::sqrt2 / 2.0, -2.0 * std::numbers::pi * hertz * delaySeconds);
                const std::complex<double> measured = ResponseAt(out.data[ear], hertz / rate);
                EXPECT_NEAR(std::abs(measured), std::abs(expected), 1e-4) << hertz;
                // The delay's allpass is exact at low frequencies only.
                if (hertz < 1000.0) {
                    EXPECT_NEAR(std::arg(measured / expected), 0.0, 2e-3) << hertz;
                }
            }
        }
    }
}

// Red if adding replaces, if several inputs aren't the sum of each, if outputs that are inputs are read after they were
// written, if a block allocates, or if an inactive input is heard.
TEST(BinauralPanningDirect, SeveralInputsAddUpAlsoInPlace) {
    BinauralPanningDirect both(2, 2), first(1, 2), second(1, 2);
    for (auto* panner : {&both, &first, &second}) panner->Configure(48000.0f, 64, true);
    Channels inPlace(2, 1024, 0.0f), expected(2, 1024, 0.0f), once(2, 64, 0.0f);
    for (const std::uint32_t c : {0u, 1u}) std::ranges::copy(MakeNoise(c + 1, 1024), inPlace.pointers[c]);
    for (std::size_t i = 0; i < 1024; i += 64) {
        both.SetSourcePosition(0, At(static_cast<double>(i)), false);
        first.SetSourcePosition(0, At(static_cast<double>(i)), false);
        both.SetSourcePosition(1, At(-70.0), false);
        second.SetSourcePosition(0, At(-70.0), false);
        auto in = inPlace.From(i), sum = expected.From(i);
        const short active[] = {1, static_cast<short>(i < 512)};
        first.ProcessAdding(sum.data(), &in[0], 64, &active[0]);
        second.Process(once.pointers.data(), &in[1], 64, &active[1]);
        for (std::size_t e = 0; e < 2; ++e)
            for (std::size_t n = 0; n < 64; ++n) sum[e][n] += once.data[e][n];
        const long allocations = AllocationCount();
        both.Process(in.data(), in.data(), 64, active);
        EXPECT_EQ(AllocationCount(), allocations);
    }
    EXPECT_EQ(inPlace.data, expected.data);
    EXPECT_GT(LevelDb(inPlace.data[0]), -20.0);

    // A single input that isn't active: the outputs are cleared, not left alone.
    const short inactive[] = {0};
    first.Process(once.pointers.data(), inPlace.pointers.data(), 64, inactive);
    EXPECT_EQ(once.data, Channels(2, 64, 0.0f).data);

    // A source that comes later sounds like one that was there from the beginning.
    BinauralPanningDirect late(1, 2);
    late.Configure(48000.0f, 64, true);
    late.SetNumInputs(2);
    const short onlySecond[] = {0, 1};
    late.SetSourcePosition(1, At(-70.0), false);
    BinauralPanningDirect early(1, 2);
    early.Configure(48000.0f, 64, true);
    early.SetSourcePosition(0, At(-70.0), false);
    Channels a(2, 1024, 0.0f), b(2, 1024, 0.0f);
    for (std::size_t i = 0; i < 1024; i += 64) {
        auto in = inPlace.From(i);
        float* ins[] = {in[0], in[0]};
        late.Process(a.From(i).data(), ins, 64, onlySecond);
        early.Process(b.From(i).data(), ins, 64, allActiveInputs);
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
// read behind the set's memory, or if a delay acts that lies in the responses already.
TEST(BinauralPanningDirect, TakesImpulseResponses) {
    const auto tap = [](std::uint32_t id, std::uint32_t i) { return static_cast<float>(id * 100 + 100 + i) / 1024.0f; };
    const TemporaryFile file("two.hrtf", TwoDirections("Binaural", "FIR", 64, 2, tap));
    for (char const* method : {"timedomain", "fftconvolution"}) {
        BinauralPanningDirect panner(1, 2);
        ASSERT_TRUE(panner.LoadFromFile(file.name.c_str()));
        EXPECT_EQ(panner.GetHrtfHeaderInfos()->numCoefficients, 64u);
        panner.SetFIRFiltersImplementationMethod(method);
        for (const std::uint32_t id : {0u, 1u}) {
            Place(panner, At(id == 0 ? -80.0 : 100.0));
            const Channels out = ImpulseResponses(panner);
            const bool direct = method[0] == 't';
            for (std::uint32_t ear : {0u, 1u})
                for (std::uint32_t n = 0; n < 100; ++n) {
                    // The direct form has its first two taps at the same sample.
                    float expected = n < 64 ? tap(id, ear * 64 + n) : 0.0f;
                    if (direct) {
                        expected = n < 63 ? tap(id, ear * 64 + n + 1) : 0.0f;
                        if (n == 0) expected += tap(id, ear * 64);
                    }
                    ASSERT_NEAR(out.data[ear][n], expected * 0.70710678f, 1e-6f) << method << " " << ear << " " << n;
                }
        }
        // And back: the built-in set has biquads again.
        ASSERT_TRUE(panner.LoadFromFile("kemar"));
        EXPECT_EQ(panner.GetHrtfHeaderInfos()->numPoints, 710u);
        Place(panner, At(90.0));
        EXPECT_GT(LevelDb(ImpulseResponses(panner).data[1]), -60.0);
    }
}

// Red if a set that doesn't suit, or a file that can't be read, changes what is heard.
TEST(BinauralPanningDirect, KeepsItsSetWhenAnotherDoesNotSuit) {
    const auto pass = [](std::uint32_t, std::uint32_t i) { return i % 5 == 0 ? 0.25f : 0.0f; };
    const TemporaryFile good("good.hrtf", TwoDirections("Binaural", "BiquadCells", 5, 2, pass));
    const TemporaryFile transform("fft.hrtf", TwoDirections("Binaural", "FFT", 5, 2, pass));
    const TemporaryFile mono("mono.hrtf", TwoDirections("Binaural", "BiquadCells", 5, 1, pass));
    const TemporaryFile loudspeakers("shuffler.hrtf",
                                     TwoDirections("BinauralToTransauralShufflerSymmetric", "BiquadCells", 5, 2, pass));
    BinauralPanningDirect panner(1, 2);
    ASSERT_TRUE(panner.LoadFromFile(good.name.c_str()));
    for (TemporaryFile const* wrong : {&transform, &mono, &loudspeakers})
        EXPECT_FALSE(panner.LoadFromFile(wrong->name.c_str())) << wrong->name;
    EXPECT_THROW(panner.LoadFromFile("there is no such file.hrtf"), orvandsp::OrvanDspException);
    Place(panner, At(90.0));
    const Channels out = ImpulseResponses(panner);
    // Gain 0.25 for both ears; the left one hears 1.25 ms later than nothing, the right one 0.75 ms.
    EXPECT_NEAR(GainDbAt(out.data[0], 0.01), -12.0412 - 3.0103, 1e-3);
    EXPECT_NEAR(std::arg(ResponseAt(out.data[0], 100.0 / rate)), -2.0 * std::numbers::pi * 0.125, 1e-3);
    EXPECT_NEAR(std::arg(ResponseAt(out.data[1], 100.0 / rate)), -2.0 * std::numbers::pi * 0.075, 1e-3);
}

TEST(BinauralPanningDirect, IsMadeForTwoOutputsOnly) {
    std::unique_ptr<Lume::Pan> made(Lume::Pan::factory(2, 2, "binaural", "direct"));
    EXPECT_NE(dynamic_cast<BinauralPanningDirect*>(made.get()), nullptr);
    made.reset(Lume::Pan::factory(2, 3, "binaural", "direct"));
    EXPECT_EQ(made->GetNumInputs(), 0u);
}

}  // namespace
