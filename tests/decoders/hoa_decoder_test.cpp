#include "decoders/ambisonic/hoa_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "decoders/ambisonic/all_rad_decoder.h"
#include "decoders/ambisonic/ambisonic_shelving.h"
#include "decoders/ambisonic/hoa2d_decoder.h"
#include "decoders/ambisonic/hoa3d_decoder.h"
#include "geometry/named_layout.h"
#include "geometry/speakers.h"
#include "harmonics/ambisonic_encoding.h"
#include "math/lu.h"
#include "pan/ambisonic/hoa2d_panning.h"
#include "pan/ambisonic/hoa3d_panning.h"
#include "support/channels.h"
#include "support/frequency_response.h"
#include "support/places.h"

namespace {

using Lume::CartesianVector;
using Lume::HOA2DDecoder;
using Lume::HOA3DDecoder;
using Lume::HOADecoder;

constexpr double pi = std::numbers::pi;
constexpr std::size_t block = 64;

/// Regular layouts in space: the octahedron for order 1, the icosahedron for order 2, and above a spherical design of
/// strength 10: five points, found by least squares on the harmonics, in the twelve rotations of a tetrahedron.
Positions LayoutInSpace(unsigned int order) {
    if (order < 3) return order == 1 ? Signed(1, 0, 0) : Signed(0, 1, std::numbers::phi_v<float>);
    Positions result;
    for (auto const& [x, y, z] : Positions{{0.451819103f, 0.783355938f, -0.426864116f},
                                           {0.545951908f, 0.365621190f, 0.753828667f},
                                           {0.338584360f, 0.933210037f, 0.120331449f},
                                           {0.034089550f, 0.700181019f, -0.713151066f},
                                           {0.957997940f, 0.276230218f, -0.077050721f}})
        result = Joined(result, Signed(x, y, std::abs(z), z > 0.0f ? 1 : -1));
    return result;
}

/// The gains that loudspeakers get for a source, measured: encoded, then decoded as a steady signal, or as one that
/// changes its sign with each sample.
std::vector<double> SpeakerGains(HOADecoder& decoder, Lume::HOAPanning& encoder, CartesianVector const& source,
                                 bool alternating) {
    encoder.SetSourcePosition(0, source, false);
    std::vector<float> encoding(decoder.GetNumInputs());
    encoder.GetGains(encoding.data());
    Channels in(decoder.GetNumInputs(), block, 0.0f), out(decoder.GetNumOutputs(), block, 0.0f);
    for (std::size_t n = 0; n < 6000; n += block) {
        for (std::size_t i = 0; i < encoding.size(); ++i)
            for (std::size_t k = 0; k < block; ++k)
                in.data[i][k] = alternating && k % 2 != 0 ? -encoding[i] : encoding[i];
        decoder.Process(out.pointers.data(), in.pointers.data(), block, orvandsp::allActiveInputs);
    }
    std::vector<double> gains;
    for (auto const& channel : out.data) gains.push_back(static_cast<double>(channel[0]));
    return gains;
}

/// Theoretical lengths of one weighting.
struct Lengths {
    double velocity, energy;
};

/// Each type at 0 Hz and at half the sample rate, against the lengths of the weights that act there.
void CheckTypes(HOADecoder& decoder, Lume::HOAPanning& encoder, std::vector<CartesianVector> const& speakers,
                std::vector<CartesianVector> const& sources, Lengths basic, Lengths maxRe, Lengths inPhase) {
    decoder.Configure(44100.0f, block, true);
    decoder.SetLoudspeakerPositions(speakers.data());
    struct Row {
        char const* type;
        Lengths low, high;
    };
    for (Row const& row : {Row{"basic", basic, basic}, Row{"InIhase", inPhase, inPhase}, Row{"MaxRe", maxRe, maxRe},
                           Row{"BasicMaxRe", basic, maxRe}, Row{"MaxReInPhase", inPhase, maxRe}}) {
        decoder.SetDecoderType(row.type);
        for (CartesianVector const& source : sources)
            for (const bool alternating : {false, true}) {
                SCOPED_TRACE(testing::Message() << row.type << (alternating ? ", high" : ", low") << ", source at "
                                                << source.x << " " << source.y << " " << source.z);
                Lengths const& lengths = alternating ? row.high : row.low;
                const GerzonVectors heard(SpeakerGains(decoder, encoder, source, alternating), speakers);
                const CartesianVector wanted = Unit(source);
                EXPECT_LT(Length(heard.velocity / static_cast<float>(lengths.velocity) - wanted), 0.01f);
                EXPECT_LT(Length(heard.energy / static_cast<float>(lengths.energy) - wanted), 0.01f);
            }
    }
}

Positions RandomDirections(std::size_t count, bool inThePlane) {
    std::mt19937 random(11);
    const auto uniform = [&] { return static_cast<double>(random()) / 4294967296.0; };
    Positions result;
    for (std::size_t i = 0; i < count; ++i) {
        const double azimuth = 360.0 * uniform(), z = inThePlane ? 0.0 : 2.0 * uniform() - 1.0;
        result.push_back(At(azimuth, std::asin(z) * 180.0 / pi, 2.0));
    }
    return result;
}

// Orders 1 to 5 on regular rings, in both conventions, sortings and (where the scaling of the channels suits it)
// methods: encoded by the panner, decoded here, measured at the loudspeakers.
TEST(HOADecoder, GerzonVectorsOnRings) {
    for (unsigned int order = 1; order <= 5; ++order)
        for (const unsigned int numSpeakers : {2 * order + 2, 2 * order + 5})
            for (const bool semiNormalized : {false, true}) {
                SCOPED_TRACE(testing::Message() << "order " << order << ", " << numSpeakers << " loudspeakers");
                Lume::HOA2DPanning encoder(1, 2 * order + 1);
                HOA2DDecoder decoder(2 * order + 1, numSpeakers);
                encoder.SetEncodingConvention(semiNormalized ? "SN2D" : "N2D");
                decoder.SetDecodingConvention(semiNormalized ? "SN2D" : "N2D");
                decoder.SetDecoderMethod(semiNormalized ? "projection" : "pseudoinverse");
                encoder.SetSphericalHarmonicsSorting(semiNormalized ? "alternatedegrees" : "increasingdegrees");
                decoder.SetSphericalHarmonicsSorting(semiNormalized ? "alternatedegrees" : "increasingdegrees");
                std::vector<CartesianVector> speakers;
                Lume::Speakers::GetRegularlySpaced(speakers, numSpeakers);
                const double n = order, maxRe = std::cos(pi / (2.0 * n + 2.0));
                CheckTypes(decoder, encoder, speakers, RandomDirections(5, true), {1.0, 2.0 * n / (2.0 * n + 1.0)},
                           {maxRe, maxRe}, {n / (n + 1.0), 2.0 * n / (2.0 * n + 1.0)});
            }
}

TEST(HOADecoder, GerzonVectorsInSpace) {
    const double maxReOf[] = {0.0, 0.577350, 0.774597, 0.861136, 0.906180, 0.932470};
    for (unsigned int order = 1; order <= 5; ++order)
        for (const bool fullyNormalized : {false, true}) {
            SCOPED_TRACE(testing::Message() << "order " << order);
            const std::vector<CartesianVector> speakers = LayoutInSpace(order);
            const auto numSpeakers = static_cast<unsigned int>(speakers.size());
            const unsigned int numChannels = (order + 1) * (order + 1);
            Lume::HOA3DPanning encoder(1, numChannels);
            HOA3DDecoder decoder(numChannels, numSpeakers);
            encoder.SetEncodingConvention(fullyNormalized ? "N3D" : "SN3D");
            decoder.SetDecodingConvention(fullyNormalized ? "n3D" : "sn3D");
            decoder.SetDecoderMethod(fullyNormalized ? HOADecoder::projection : HOADecoder::pseudoinverse);
            const double n = order, maxRe = maxReOf[order];
            CheckTypes(decoder, encoder, speakers, RandomDirections(5, false), {1.0, n / (n + 1.0)}, {maxRe, maxRe},
                       {n / (n + 2.0), n / (n + 1.0)});
        }
}

// Re-encoding the feeds gives the channels back, also on an irregular layout; the condition tells how hard that is.
TEST(HOADecoder, PseudoinverseUndoesTheEncodingOfItsLoudspeakers) {
    HOA2DDecoder decoder(5, 7);
    std::vector<CartesianVector> speakers;
    for (const double azimuth : {10.0, 50.0, 95.0, 160.0, 200.0, 260.0, 330.0})
        speakers.push_back({static_cast<float>(std::cos(azimuth * pi / 180.0)),
                            static_cast<float>(std::sin(azimuth * pi / 180.0)), 0.0f});
    decoder.SetLoudspeakerPositions(speakers.data());
    orvandsp::MatrixDouble inverse, encoding;
    decoder.GetDecoderMatrix(inverse);
    decoder.SetDecoderMethod("projection");
    decoder.GetDecoderMatrix(encoding);
    const orvandsp::MatrixDouble product = encoding * Transpose(inverse);
    for (unsigned int i = 0; i < 5; ++i)
        for (unsigned int j = 0; j < 5; ++j) EXPECT_NEAR(7.0 * product[i][j], i == j ? 1.0 : 0.0, 1e-6);

    HOADecoder::HOADecoderInfos irregular, regular;
    decoder.GetDecoderInfos(irregular);
    EXPECT_EQ(irregular.order, 2u);
    EXPECT_EQ(irregular.dimensionFlag, 0u);
    EXPECT_EQ(irregular.decoderMethod, HOADecoder::projection);
    // With E the projection matrix of a regular ring, E transpose(E) is diag(0.5, 1, 1, 1, 1) / 7.
    Lume::Speakers::GetRegularlySpaced(speakers, 7);
    decoder.SetLoudspeakerPositions(speakers.data());
    decoder.GetDecoderInfos(regular);
    EXPECT_NEAR(regular.semiRegularity, 0.5 * std::pow(7.0, -5.0), 1e-10);
    EXPECT_NEAR(regular.regularity, 0.5 * std::pow(49.0, -5.0), 1e-14);
    EXPECT_NEAR(regular.conditionNumber, 10.0 * std::log10(std::sqrt(2.0)), 1e-4);
    EXPECT_GT(irregular.conditionNumber, regular.conditionNumber);
}

TEST(HOADecoder, ValuesThatAreNoneChangeNothing) {
    HOA3DDecoder decoder(9, 12);
    HOADecoder::HOADecoderInfos infos;
    decoder.SetDecoderType(static_cast<HOADecoder::HOADecoderType>(4));
    decoder.SetDecoderType(static_cast<HOADecoder::HOADecoderType>(7));
    decoder.SetDecodingConvention(HOADecoder::SN2D);
    HOA2DDecoder plane(3, 4);
    plane.SetDecodingConvention(HOADecoder::N3D);
    plane.GetDecoderInfos(infos);
    EXPECT_EQ(infos.decodingConvention, HOADecoder::N2D);
    decoder.SetDecoderMethod(static_cast<HOADecoder::HOADecoderMethod>(2));
    decoder.GetDecoderInfos(infos);
    EXPECT_EQ(infos.decoderType, HOADecoder::maxreinphase);
    EXPECT_EQ(infos.decodingConvention, HOADecoder::N3D);
    EXPECT_EQ(infos.decoderMethod, HOADecoder::pseudoinverse);
    EXPECT_EQ(HOADecoder::GetHOADecoderType("InIhase"), HOADecoder::inphase);
    EXPECT_EQ(HOADecoder::GetHOADecoderType("InPhase"), HOADecoder::basic);
    EXPECT_EQ(HOADecoder::GetHOADecodingConvention("sn3D"), HOADecoder::SN3D);
    EXPECT_EQ(HOADecoder::GetHOADecodingConvention("N2d"), HOADecoder::SN3D);
    EXPECT_STREQ(HOADecoder::GetHOADecoderTypeName(HOADecoder::basicmaxre), "basicmaxre");

    // Coincident loudspeakers, all of them: finite gains.
    const std::vector<CartesianVector> heap(12, {0.0f, 1.0f, 0.0f});
    decoder.SetLoudspeakerPositions(heap.data());
    orvandsp::MatrixDouble matrix;
    decoder.GetDecoderMatrix(matrix);
    for (unsigned int i = 0; i < 9; ++i)
        for (const double gain : matrix[i]) EXPECT_TRUE(std::isfinite(gain));
}

// The types inphase and maxre weight the caller's own arrays, over the samples of the call and no more.
TEST(HOADecoder, WeightsTheInputArraysOverTheSamplesOfTheCall) {
    HOA2DDecoder decoder(3, 4);
    decoder.Configure(44100.0f, 64, true);
    decoder.SetDecoderType(HOADecoder::inphase);
    Channels in(3, 64, 1.0f), out(4, 64, 0.0f);
    decoder.Process(out.pointers.data(), in.pointers.data(), 10, orvandsp::allActiveInputs);
    EXPECT_EQ(in.data[0][9], 1.0f);
    EXPECT_EQ(in.data[2][9], 0.5f);
    EXPECT_EQ(in.data[2][10], 1.0f);
}

// Red if the band splitters don't hear of the sample rate: twice the crossover at twice the rate gives the same bands.
TEST(HOADecoder, RateReachesTheBandSplitters) {
    std::vector<std::vector<float>> heard;
    for (const float factor : {1.0f, 2.0f}) {
        HOA2DDecoder decoder(3, 4);
        decoder.Configure(48000.0f * factor, 64, true);
        decoder.SetCrossover(500.0f * factor);
        decoder.SetDecoderType("maxreinphase");
        Channels in(3, 8192, 0.0f), out(4, 8192, 0.0f);
        for (auto& channel : in.data) channel[8000] = 1.0f;
        decoder.Process(out.pointers.data(), in.pointers.data(), 8192, orvandsp::allActiveInputs);
        heard.push_back(out.data[1]);
    }
    for (std::size_t n = 0; n < 8192; ++n) EXPECT_NEAR(heard[0][n], heard[1][n], 1e-6f) << n;
    EXPECT_NE(heard[0].back(), 0.0f);
}

// The bands add up to an allpass at every rate and crossover; the low one has all at 0 Hz, the high one at the top.
TEST(AmbisonicShelving, BandsAddUpToAnAllpass) {
    for (const double rate : {44100.0, 96000.0})
        for (const double crossover : {200.0, 700.0, 3000.0}) {
            SCOPED_TRACE(testing::Message() << crossover << " at " << rate);
            Lume::AmbisonicShelving shelving;
            shelving.SetSamplerate(static_cast<float>(rate));
            shelving.SetCrossover(static_cast<float>(crossover));
            std::vector<float> low(16384, 0.0f), high(16384);
            low[0] = 1.0f;
            shelving.Process(low.data(), low.data(), high.data(), low.size());
            std::vector<float> both(low.size());
            std::transform(low.begin(), low.end(), high.begin(), both.begin(), [](float a, float b) { return a + b; });
            for (const double f : {0.0, 100.0, 700.0, 2000.0, 10000.0})
                EXPECT_NEAR(std::abs(ResponseAt(both, f / rate)), 1.0, 1e-4) << f;
            EXPECT_NEAR(GainDbAt(low, 0.0), 0.0, 1e-3);
            EXPECT_LT(std::abs(ResponseAt(high, 0.0)), 1e-4);
            EXPECT_LT(std::abs(ResponseAt(low, 0.5)), 1e-4);
        }
    // Beyond a quarter of the rate another formula holds; the first sample of the low band shows its coefficient.
    std::fesetenv(FE_DFL_ENV);
    Lume::AmbisonicShelving shelving;
    shelving.SetCrossover(0.4f * 44100.0f);
    float low = 0.0f, high = 0.0f;
    const float one = 1.0f;
    shelving.Process(&one, &low, &high, 1);
    // Red if the states decay into denormals, where they never end, on a thread that nobody configured.
    volatile float tiny = std::numeric_limits<float>::min();
    EXPECT_EQ(tiny * 0.5f, 0.0f);
    const double a = -0.5 * std::cos(0.8 * pi);
    EXPECT_NEAR(static_cast<double>(low), 0.25 * (1.0 - a) * (1.0 - a), 1e-6);
    EXPECT_NEAR(static_cast<double>(high + low), a, 1e-6);
    // Red if a crossover below 0 or above three quarters of the rate makes a pole outside the unit circle.
    for (const float crossover : {-50.0f, 0.76f * 44100.0f, 0.97f * 44100.0f, 1e9f}) {
        shelving.SetCrossover(crossover);
        std::vector<float> lows(8192, 1.0f), highs(8192);
        shelving.Process(lows.data(), lows.data(), highs.data(), lows.size());
        EXPECT_LT(std::abs(lows.back()) + std::abs(highs.back()), 4.0f) << crossover;
    }
}

// Red if a triangle of the hull is missing (a direction is then lost or played elsewhere), if degrees are weighted
// wrongly, or if a layout makes large gains: energy vectors of waves within the layout point at them, their power
// stays, from below too, where an imaginary loudspeaker stands for half the sphere.
TEST(AllRadDecoder, IrregularLayoutsPlayWavesWhereTheyComeFrom) {
    for (char const* name : {"5.0.4", "7.0.4", "9.1.6", "22.2", "dome12", "dome24", "dome48"}) {
        const std::vector<Lume::CartesianVector> speakers = Lume::FindNamedLayout(name).positions;
        for (const unsigned int order : {1u, 3u, 5u}) {
            const unsigned int numChannels = (order + 1) * (order + 1);
            Lume::AllRadDecoder decoder(numChannels, static_cast<unsigned int>(speakers.size()));
            decoder.SetLoudspeakerPositions(speakers.data());
            double sumDegrees = 0.0, count = 0.0, least = 1e9, most = 0.0;
            for (double azimuth = 0.0; azimuth < 360.0; azimuth += 15.0) {
                for (const double elevation : {-90.0, -45.0, 0.0, 20.0, 45.0}) {
                    const Lume::CartesianVector d = At(azimuth, elevation);
                    const auto wave =
                        Lume::AmbisonicEncodingVector(order, d, Lume::SchmidtSeminormalized3D, Lume::IncreasingDegrees);
                    std::vector<double> gains(speakers.size(), 0.0);
                    for (std::size_t j = 0; j < speakers.size(); ++j)
                        for (unsigned int i = 0; i < numChannels; ++i)
                            gains[j] += wave[i] * decoder.GetDecoderMatrix()[i][j];
                    const GerzonVectors heard(gains, speakers);
                    least = std::min(least, heard.power);
                    most = std::max(most, heard.power);
                    if (elevation < 0.0) continue;
                    sumDegrees += std::acos(std::min(1.0, static_cast<double>(Dot(Unit(heard.energy), d)))) * 180.0 /
                                  std::numbers::pi;
                    count += 1.0;
                }
            }
            // Measured: 2 to 12 degrees on average; on domes at most 1.9 dB, elsewhere 5.7.
            EXPECT_LT(sumDegrees / count, order == 1 ? 12.5 : 8.0) << name << " " << order;
            EXPECT_LT(10.0 * std::log10(most / least), std::string(name).starts_with("dome") ? 2.0 : 6.0)
                << name << " " << order;
        }
    }
}

}  // namespace
