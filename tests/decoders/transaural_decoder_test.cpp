#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "decoders/measured_ways.h"
#include "decoders/null_decoder.h"
#include "decoders/transaural/transaural_decoder_least_squares.h"
#include "decoders/transaural/transaural_decoder_recursive_symmetric_biquads.h"
#include "pan/panning_support.h"
#include "pan/set_file.h"
#include "support/allocation_count.h"
#include "support/frequency_response.h"
#include "support/signals.h"
#include "support/temporary_file.h"

namespace {

using Lume::Decoder;
using Lume::FilteredTransauralDecoder;
using Lume::TransauralDecoder;
using Filters = std::vector<std::vector<float>>;

/// A member of the family that takes its filters ready from a file.
struct Member {
    char const* subType;
    char const* dataType;
    std::size_t numFilters;
    bool symmetric;
};
constexpr Member members[] = {
    {"shufflersymmetric", "BinauralToTransauralShufflerSymmetric", 2, true},
    {"shufflerasymmetric", "BinauralToTransauralShufflerAsymmetric", 6, false},
    {"feedforwardsymmetric", "BinauralToTransauralFeedForwardSymmetric", 6, true},
    {"feedforwardasymmetric", "BinauralToTransauralFeedForwardAsymmetric", 6, false},
    {"leastsquares", "BinauralToTransauralLeastSquares", 4, false},
    {"recursivesymmetric", "BinauralToTransauralRecursiveSymmetric", 4, true},
    {"recursiveasymmetric", "BinauralToTransauralRecursiveAsymmetric", 4, false},
};

std::unique_ptr<TransauralDecoder> Make(char const* subType) {
    std::unique_ptr<Decoder> decoder(Decoder::factory(2, 2, "transaural", subType));
    auto* const transaural = dynamic_cast<TransauralDecoder*>(decoder.get());
    if (transaural != nullptr) (void)decoder.release();
    return std::unique_ptr<TransauralDecoder>(transaural);
}

/// A file of impulse responses for one pair of loudspeakers, with silent filters for another pair ahead of it.
std::string FirFile(Member const& member, std::vector<Lume::CartesianVector> positions, Filters const& filters) {
    if (member.symmetric) positions.resize(1);
    SetDescription set;
    set.dataType = member.dataType;
    set.filterType = "FIR";
    set.numCoefficients = static_cast<std::uint32_t>(filters[0].size());
    set.numChannels = static_cast<std::uint32_t>(filters.size());
    set.positionsPerPoint = static_cast<std::uint32_t>(positions.size());
    set.positions.assign(positions.size(), {0.0f, -1.0f, 0.0f});
    set.positions.insert(set.positions.end(), positions.begin(), positions.end());
    return SetFile(set, [&](std::uint32_t point, std::uint32_t place) {
        return point == 0 ? 0.0f : filters[place / set.numCoefficients][place % set.numCoefficients];
    });
}

/// A member with filters for loudspeakers at 30 degrees.
std::unique_ptr<TransauralDecoder> Load(Member const& member, Filters const& filters, unsigned int blockSize) {
    const TemporaryFile file(".bin2trans", FirFile(member, {At(-30), At(30)}, filters));
    auto decoder = Make(member.subType);
    decoder->Configure(44100.0f, blockSize, true);
    EXPECT_TRUE(decoder->LoadFromFile(file.name.c_str())) << member.subType;
    return decoder;
}

/// How much less crosstalk there is at the ears than with bare loudspeakers [dB], for an impulse at each input, in the
/// mean from 200 Hz to 8 kHz on a logarithmic axis.
double CrosstalkReduction(Decoder& decoder, Ways const& ways) {
    double sum = 0.0, count = 0.0;
    for (const unsigned int input : {0u, 1u}) {
        decoder.Clear();
        Channels in(2, 4096, 0.0f);
        Processed(decoder, in, 2);  // fades and glides end
        in.data[input][0] = 0.25f;  // low enough for every loop
        const Channels feeds = Processed(decoder, in, 2);
        for (double f = 200.0; f <= 8000.0; f *= std::pow(2.0, 1.0 / 24.0)) {
            const auto feed = [&](std::size_t speaker) { return ResponseAt(feeds.data[speaker], f / measuredRate); };
            sum += ways.Hear(feed(0), feed(1), input, f).reductionDb;
            ++count;
        }
    }
    return sum / count;
}

// The built-in sets, for half angles that they have. Red if a filter goes to the wrong signal or a sign changes, if the
// loudspeakers change sides, and at 40 degrees if the loop can run away, as its filters alone would.
TEST(TransauralDecoder, BuiltInSetsCancelCrosstalk) {
    struct Case {
        char const* subType;
        int angle;
        double reductionDb;
    };
    for (Case const& c : {Case{"shufflersymmetric", 30, 20.0}, Case{"shufflersymmetric", 60, 20.0},
                          Case{"recursivesymmetricbiquads", 20, 20.5}, Case{"recursivesymmetricbiquads", 30, 18.0},
                          Case{"recursivesymmetricbiquads", 40, 12.5}}) {
        const Ways ways(c.angle, c.angle);
        ASSERT_EQ(ways.ll.size(), 512u) << "install libmysofa-dev, which brings the measurements";
        auto decoder = Make(c.subType);
        decoder->Configure(44100.0f, 64, true);
        ASSERT_TRUE(decoder->LoadFromFile("kemar"));
        const Lume::CartesianVector speakers[] = {At(-c.angle, 0.0, 2.0), At(c.angle, 0.0, 2.0)};
        decoder->SetLoudspeakerPositions(speakers);
        EXPECT_GE(CrosstalkReduction(*decoder, ways), c.reductionDb) << c.subType << ' ' << c.angle;
    }
}

/// Some short filters that are all different.
Filters ShortFilters(std::size_t count) {
    Filters filters;
    for (std::size_t i = 0; i < count; ++i) filters.push_back(MakeNoise(static_cast<std::uint32_t>(i + 1), 5, 0.2f));
    return filters;
}

// Red if the direct form merges the first two values of an impulse response, if a Process writes over an input that it
// still needs, or if one allocates.
TEST(TransauralDecoder, DirectFormFftAndInPlaceAgree) {
    constexpr std::size_t length = 512, blockSize = 32;
    for (Member const& member : members) {
        auto decoder = Load(member, ShortFilters(member.numFilters), blockSize);
        Channels in = NoiseChannels(2, length, 50, 0.2f);
        const Channels direct = Processed(*decoder, in, 2, blockSize);

        dynamic_cast<FilteredTransauralDecoder&>(*decoder).SetFIRFiltersImplementationMethod("fftconvolution");
        decoder->Clear();
        const Channels fft = Processed(*decoder, in, 2, blockSize);
        for (const unsigned int i : {0u, 1u})
            for (std::size_t n = 0; n < length; ++n)
                ASSERT_NEAR(fft.data[i][n], direct.data[i][n], 2e-6) << member.subType << ' ' << n;

        decoder->Clear();
        const long before = AllocationCount();
        for (std::size_t n = 0; n < length; n += blockSize) {
            float* from[] = {in.pointers[0] + n, in.pointers[1] + n};
            float* to[] = {in.pointers[1] + n, in.pointers[0] + n};
            decoder->Process(to, from, blockSize, orvandsp::allActiveInputs);
        }
        EXPECT_EQ(AllocationCount(), before) << member.subType;
        EXPECT_EQ(in.data[1], fft.data[0]) << member.subType;
        EXPECT_EQ(in.data[0], fft.data[1]) << member.subType;
    }
}

// Red if a member plays without data or with one input, or takes a set that it can't use, or loses the one that it has.
TEST(TransauralDecoder, OnlySuitingSetsPlay) {
    constexpr short halfActive[] = {1, 0};
    const auto plays = [](Decoder& decoder, short const* active) {
        Channels in = NoiseChannels(2, 64, 50, 0.2f), out(2, 64, 1.0f);
        decoder.Process(out.pointers.data(), in.pointers.data(), 64, active);
        return Power(out.data[0]) + Power(out.data[1]) > 0.0;
    };
    const auto loads = [](TransauralDecoder& decoder, Member const& member, Filters const& filters) {
        const TemporaryFile file(".bin2trans", FirFile(member, {At(-30), At(30)}, filters));
        return decoder.LoadFromFile(file.name.c_str());
    };
    for (Member const& member : members) {
        EXPECT_FALSE(plays(*Make(member.subType), orvandsp::allActiveInputs)) << member.subType;
        auto decoder = Load(member, ShortFilters(member.numFilters), 64);
        EXPECT_TRUE(plays(*decoder, orvandsp::allActiveInputs)) << member.subType;
        EXPECT_FALSE(plays(*decoder, halfActive)) << member.subType;

        Member other = member;
        other.dataType = "Binaural";
        EXPECT_FALSE(loads(*decoder, other, ShortFilters(member.numFilters))) << member.subType;
        EXPECT_FALSE(loads(*decoder, member, ShortFilters(member.numFilters - 1))) << member.subType;
        EXPECT_EQ(decoder->GetHrtfHeaderInfos()->numCoefficients, 5u);
        EXPECT_TRUE(plays(*decoder, orvandsp::allActiveInputs)) << member.subType;
    }
    auto biquads = Make("recursivesymmetricbiquads");
    EXPECT_FALSE(plays(*biquads, orvandsp::allActiveInputs));
    Member binaural = members[0];
    binaural.dataType = "Binaural";
    EXPECT_FALSE(loads(*biquads, binaural, ShortFilters(2)));  // not in second-order sections
    EXPECT_EQ(biquads->GetHrtfHeaderInfos(), nullptr);
    EXPECT_NE(dynamic_cast<Lume::NullDecoder*>(
                  std::unique_ptr<Decoder>(Lume::TransauralDecoderLeastSquares::Create(2, 3)).get()),
              nullptr);
}

TEST(TransauralDecoder, LoudspeakersAndHead) {
    auto decoder = Make("shufflersymmetric");
    const auto isSymmetric = [&](Lume::CartesianVector a, Lume::CartesianVector b) {
        const Lume::CartesianVector speakers[] = {a, b};
        decoder->SetLoudspeakerPositions(speakers);
        return decoder->IsSpeakersSetupSymmetric();
    };
    EXPECT_FALSE(decoder->IsSpeakersSetupSymmetric());
    EXPECT_TRUE(isSymmetric(At(30), At(-30)));
    EXPECT_FALSE(isSymmetric(At(-30, 0.0, 4.0), At(31, 0.0, 4.0)));
    EXPECT_FALSE(isSymmetric(At(-30), At(30, 5.0)));
    Lume::CartesianVector left, right;
    isSymmetric(At(45), At(-30));
    decoder->GetSpeakersPositions(left, right);
    EXPECT_EQ(left.x, At(-30).x);
    EXPECT_EQ(right.x, At(45).x);
    for (const auto& [set, stored] : {std::pair(1.0f, 0.25f), std::pair(0.0f, 0.01f), std::pair(0.09f, 0.09f)}) {
        decoder->SetListenerHeadRadius(set);
        EXPECT_EQ(decoder->GetListenerHeadRadius(), stored);
    }
}

/// Loads a set into the loop of second-order sections: one section with b1 as its only coefficient for the near ear, a
/// gain of a half for the far ear, and 10 samples between.
void LoadLoop(TransauralDecoder& decoder, float b1) {
    constexpr double halfItd = 5.0 / 44.1;  // [ms]
    const SetDescription set{
        .numCoefficients = 5, .positions = {At(-30), At(30)}, .itds = {-halfItd * 2.0, halfItd * 2.0}};
    const TemporaryFile file(".hrtf", SetFile(set, [&](auto, std::uint32_t place) {
                                 constexpr float coefficients[] = {1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.5f};
                                 return place == 1 ? b1 : place < 6 ? coefficients[place] : 0.0f;
                             }));
    EXPECT_TRUE(decoder.LoadFromFile(file.name.c_str()));
    Processed(decoder, Channels(2, 4096, 0.0f), 2);  // the glide and the fades end
}

std::unique_ptr<TransauralDecoder> MakeLoop() {
    auto decoder = Make("recursivesymmetricbiquads");
    decoder->Configure(44100.0f, 64, true);
    LoadLoop(*decoder, 0.0f);
    return decoder;
}

// Red if a loop has the other's sign, if its delay or the order within it changes, or if it allocates.
TEST(TransauralDecoder, BiquadLoopsFollowTheirEquations) {
    auto decoder = MakeLoop();
    for (const double side : {1.0, -1.0}) {
        decoder->Clear();
        Channels in(2, 128, 0.0f), out(2, 128, 0.0f);
        in.data[0][0] = 0.25f;
        in.data[1][0] = static_cast<float>(side * 0.25);
        const long before = AllocationCount();
        decoder->Process(out.pointers.data(), in.pointers.data(), 128, orvandsp::allActiveInputs);
        EXPECT_EQ(AllocationCount(), before);
        for (int n = 0; n < 128; ++n) {
            const double expected = n % 10 != 0 ? 0.0 : 0.5 * std::pow(-0.5 * side, n / 10);
            EXPECT_NEAR(out.data[0][static_cast<std::size_t>(n)], expected, 1e-3) << n;
            EXPECT_NEAR(out.data[1][static_cast<std::size_t>(n)], side * expected, 1e-3) << n;
        }
    }
}

// Red if full scale isn't the limit, if it acts on the outputs alone, or if the loop doesn't come back.
TEST(TransauralDecoder, BiquadLoopsDropWhatExceedsFullScale) {
    auto decoder = MakeLoop();
    Channels in(2, 64, 0.0f);
    in.data[0][0] = in.data[1][0] = 1.5f;  // 3 in the loop: dropped, and dropped again when half of it comes around
    in.data[0][25] = in.data[1][25] = 0.2f;
    const Channels out = Processed(*decoder, in, 2);
    for (std::size_t n = 0; n < 25; ++n) EXPECT_NEAR(out.data[0][n], 0.0, 1e-3) << n;
    EXPECT_NEAR(out.data[0][25], 0.4, 1e-3);
    EXPECT_NEAR(out.data[0][35], -0.2, 1e-3);
}

// A near ear whose inverse is unstable. Red if it can be heard as anything but numbers within full scale, or if it
// leaves anything behind once a better set is loaded.
TEST(TransauralDecoder, BiquadLoopsSurviveUnstableInverses) {
    auto decoder = MakeLoop();
    LoadLoop(*decoder, -2.5f);
    const Channels bad = Processed(*decoder, NoiseChannels(2, 4096, 50, 0.2f), 2);
    EXPECT_TRUE(std::ranges::all_of(bad.data[0], [](float x) { return std::abs(x) <= 2.0f; }));
    LoadLoop(*decoder, 0.0f);
    Channels in(2, 64, 0.0f);
    in.data[0][0] = in.data[1][0] = 0.25f;
    const Channels good = Processed(*decoder, in, 2);
    EXPECT_NEAR(good.data[0][0], 0.5, 1e-3);
    EXPECT_NEAR(good.data[0][10], -0.25, 1e-3);
    EXPECT_NEAR(good.data[0][20], 0.125, 1e-3);
}

// A loop with a gain of 2. Red if it grows without end, or if it doesn't start anew as if nothing had been.
TEST(TransauralDecoder, RunawayLoopsFallSilentAndRecover) {
    for (Member const& member : members) {
        if (!std::string(member.subType).starts_with("recursive")) continue;
        auto decoder = Load(member, {{2.0f, 0.0f}, {2.0f, 0.0f}, {1.0f, 0.0f}, {1.0f, 0.0f}}, 64);
        Channels in(2, 64 * 20, 0.0f);
        in.data[0][0] = 0.5f;
        const Channels first = Processed(*decoder, in, 2), again = Processed(*decoder, in, 2);
        const auto largest = *std::ranges::max_element(first.data[0]);
        EXPECT_GT(largest, 10.0f);
        EXPECT_LE(largest, 100.0f);
        for (const unsigned int i : {0u, 1u}) {
            EXPECT_EQ(Power({first.data[i].end() - 64 * 10, first.data[i].end()}), 0.0) << member.subType;
            EXPECT_EQ(again.data[i], first.data[i]) << member.subType;
        }
    }
}

}  // namespace
