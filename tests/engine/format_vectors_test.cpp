#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "decoders/ambisonic/hoa2d_decoder.h"
#include "decoders/ambisonic/hoa3d_decoder.h"
#include "engine/engine_rig.h"
#include "engine/room_format.h"
#include "geometry/named_layout.h"
#include "geometry/vector_algebra.h"
#include "math/real_transform.h"
#include "support/places.h"

namespace {

using Lume::CartesianVector;

constexpr double speedOfSound = 343.0;

/// The gains with which the loudspeakers that sound, at most three, point exactly at a source.
std::vector<double> GainsAt(CartesianVector const& source, std::vector<double> const& heard,
                            Positions const& speakers) {
    Positions corners;
    std::vector<std::size_t> channels;
    for (std::size_t j = 0; j < speakers.size(); ++j)
        if (std::abs(heard[j]) > 1e-4) {
            channels.push_back(j);
            corners.push_back(Unit(speakers[j]));
        }
    std::vector<double> gains(speakers.size(), 0.0);
    if (corners.empty() || corners.size() > 3) return gains;
    // What lies across all others has no share.
    if (corners.size() == 1) corners.push_back(Unit(Cross(corners[0], {0.3f, 0.5f, 0.7f})));
    if (corners.size() == 2) corners.push_back(Unit(Cross(corners[0], corners[1])));
    for (std::size_t k = 0; k < channels.size(); ++k) {
        const CartesianVector across = Cross(corners[(k + 1) % 3], corners[(k + 2) % 3]);
        gains[channels[k]] = static_cast<double>(Dot(across, source) / Dot(across, corners[k]));
    }
    return gains;
}

/// The direct layer of a format, asked for one direction after the other.
class DirectLayer {
public:
    DirectLayer(char const* format, unsigned int numOutputs, Positions const& speakers)
        : room(1, numOutputs, 4, 48000.0f, 64, format) {
        if (!speakers.empty()) room.engine.SetSpeakersPositions(speakers.data());
        room.engine.SetDirectGain(0.0f);
        room.Settle();
    }

    std::vector<double> GainsFor(CartesianVector const& source) {
        room.engine.SetSourcePosition(0, source);
        std::vector<double> gains;
        for (auto const& channel : room.Run(room.Samples(0.1), [](unsigned int, std::size_t) { return 1.0f; }))
            gains.push_back(static_cast<double>(channel.back()));
        return gains;
    }

private:
    EngineRig room;
};

void ExpectNear(CartesianVector const& a, CartesianVector const& b, std::string const& what) {
    EXPECT_LT(Length(a - b), 0.01f * Length(b)) << what;
}

// Red if a pair or triplet has other gains than those that point at the source, or another power law: velocity and
// energy vectors within one percent.
TEST(FormatVectors, PairsAndTripletsPointAtTheSource) {
    const struct {
        char const *format, *layout;
    } cases[] = {{nullptr, "5.0"},  {"vbap2d", "7.0"}, {"stereo", nullptr}, {"vbap", "5.0.4"},  {"vbap", "7.0.4"},
                 {"vbap", "9.1.6"}, {"vbap", "22.2"},  {"dome", "dome12"},  {"dome", "dome24"}, {"vdbap", "dome48"}};
    for (auto const& [format, layout] : cases) {
        const bool isPair = layout == nullptr;
        const Positions speakers =
            isPair ? Positions{At(-30.0, 0.0), At(30.0, 0.0)} : Lume::FindNamedLayout(layout).positions;
        DirectLayer layer(format, static_cast<unsigned int>(speakers.size()), isPair ? Positions{} : speakers);
        const bool inSpace = format != nullptr && Lume::FindRoomFormat(format)->inSpace;
        for (double azimuth = -170.0; azimuth < 180.0; azimuth += 31.0) {
            for (const double elevation : {0.0, 21.0, 55.0}) {
                if ((!inSpace && elevation > 0.0) || (isPair && std::abs(azimuth) > 30.0)) continue;
                const std::string what = std::string(format == nullptr ? "ring" : format) + " " +
                                         (isPair ? "" : layout) + " " + std::to_string(azimuth) + " " +
                                         std::to_string(elevation);
                const CartesianVector source = At(azimuth, elevation);
                // Far enough for what fades by distance.
                const std::vector<double> gains = layer.GainsFor(source * 2.0f);
                const std::vector<double> wanted = GainsAt(source, gains, speakers);
                const GerzonVectors heard(gains, speakers), theory(wanted, speakers);
                ExpectNear(heard.velocity / Length(heard.velocity), source, what + ": velocity, direction");
                ExpectNear(heard.velocity, theory.velocity, what + ": velocity");
                ExpectNear(heard.energy, theory.energy, what + ": energy");
            }
        }
    }
}

// Decoded on even layouts a wave of ambisonics is itself: the velocity vector has length 1, and the energy vector that
// of its order (Daniel, "Représentation de champs acoustiques", thesis, Université Paris 6, 2000).
TEST(FormatVectors, AmbisonicsDecodeToTheWaveOfTheirOrder) {
    const Positions sphere = SnubCube();
    Positions circle;
    for (int j = 0; j < 16; ++j) circle.push_back(At(22.5 * j, 0.0));
    for (std::string const format : {"hoa2d", "hoa3d", "ambix"}) {
        for (const unsigned int order : {1u, 2u, 3u}) {
            const bool inPlane = format == "hoa2d";
            const unsigned int numChannels = inPlane ? 2 * order + 1 : (order + 1) * (order + 1);
            Positions speakers = inPlane ? circle : sphere;
            const Lume::RoomFormat& row = *Lume::FindRoomFormat(format);
            for (CartesianVector& speaker : speakers) speaker = row.ToPanner(speaker);
            std::unique_ptr<Lume::HOADecoder> decoder;
            const auto numSpeakers = static_cast<unsigned int>(speakers.size());
            if (inPlane)
                decoder = std::make_unique<Lume::HOA2DDecoder>(numChannels, numSpeakers);
            else
                decoder = std::make_unique<Lume::HOA3DDecoder>(numChannels, numSpeakers);
            decoder->SetDecodingConvention(inPlane ? Lume::HOADecoder::SN2D : Lume::HOADecoder::SN3D);
            decoder->SetLoudspeakerPositions(speakers.data());
            orvandsp::MatrixDouble matrix;
            decoder->GetDecoderMatrix(matrix);
            DirectLayer layer(format.c_str(), numChannels, {});
            for (double azimuth = -170.0; azimuth < 180.0; azimuth += 47.0) {
                const CartesianVector source = At(azimuth, inPlane ? 0.0 : azimuth / 3.0);
                const std::vector<double> channels = layer.GainsFor(source);
                std::vector<double> gains(speakers.size(), 0.0);
                for (unsigned int i = 0; i < numChannels; ++i)
                    for (unsigned int j = 0; j < numSpeakers; ++j) gains[j] += channels[i] * matrix[i][j];
                const GerzonVectors heard(gains, speakers);
                const float length =
                    static_cast<float>(inPlane ? 2.0 * order / (2.0 * order + 1.0) : order / (order + 1.0));
                const std::string what = format + " " + std::to_string(order) + " " + std::to_string(azimuth);
                ExpectNear(heard.velocity, row.ToPanner(source), what + ": velocity");
                ExpectNear(heard.energy, row.ToPanner(source) * length, what + ": energy");
            }
        }
    }
}

/// Omnidirectional microphones in the field of far loudspeakers, by the spectra that stand there in one frame.
class MicrophoneArray {
public:
    MicrophoneArray(Positions newSpeakers, double newRate, std::size_t size)
        : speakers(std::move(newSpeakers)), rate(newRate), transform(size), spectra(speakers.size()) {}

    void Hear(EngineRig::Recording const& signals, std::size_t start, double gain) {
        std::vector<double> frame(transform.Size());
        for (std::size_t j = 0; j < speakers.size(); ++j) {
            for (std::size_t n = 0; n < frame.size(); ++n)
                frame[n] = gain * static_cast<double>(signals[j][start + n]) *
                           (0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * static_cast<double>(n) /
                                                 static_cast<double>(frame.size())));
            spectra[j] = transform.Forward(frame);
        }
    }

    std::complex<double> At(CartesianVector const& place, std::size_t bin) const {
        const double wavenumber = 2.0 * std::numbers::pi * transform.FrequencyOf(bin, rate) / speedOfSound;
        std::complex<double> pressure = 0.0;
        for (std::size_t j = 0; j < speakers.size(); ++j)
            pressure += spectra[j][bin] * std::polar(1.0, wavenumber * static_cast<double>(Dot(place, speakers[j])));
        return pressure;
    }

private:
    Positions speakers;
    double rate;
    orvandsp::RealTransform transform;
    std::vector<orvandsp::Spectrum> spectra;
};

// The late field of order 3, decoded on 24 loudspeakers all around, in a band of an octave at a listener's place: seen
// by cardioids it comes equally from everywhere, and two microphones hear as much of the same as in a field of waves
// from everywhere, sin(kd) / (kd) (Cook et al., "Measurement of correlation coefficients in reverberant sound fields",
// J. Acoust. Soc. Am. 27, 1955). Red if channels of the field are correlated, scaled wrongly, or fewer than the order
// has.
TEST(FormatVectors, LateFieldOnTwentyFourLoudspeakersIsDiffuse) {
    constexpr double rate = 48000.0, decaySeconds = 4.0;
    constexpr std::size_t size = 1024;
    EngineRig room(1, 16, 16, static_cast<float>(rate), 64, "ambix");
    room.engine.SetReverbGain(0.0f);
    room.engine.SetDecayTime(static_cast<float>(decaySeconds));
    room.engine.SetRelativeDecayHigh(1.0f);
    room.engine.UseAirAbsorption(false);
    room.Settle();
    const EngineRig::Recording tail = room.ImpulseResponse(4.0);

    const Positions speakers = SnubCube();
    Lume::HOA3DDecoder decoder(16, 24);
    decoder.SetDecodingConvention(Lume::HOADecoder::SN3D);
    decoder.SetLoudspeakerPositions(speakers.data());
    orvandsp::MatrixDouble matrix;
    decoder.GetDecoderMatrix(matrix);
    EngineRig::Recording signals(24, std::vector<float>(tail[0].size(), 0.0f));
    for (unsigned int j = 0; j < 24; ++j)
        for (unsigned int i = 0; i < 16; ++i)
            for (std::size_t n = 0; n < tail[i].size(); ++n)
                signals[j][n] += static_cast<float>(matrix[i][j]) * tail[i][n];

    const CartesianVector axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    constexpr float halfGaugeM = 0.02f;  // between the microphones of a gradient
    constexpr std::array<float, 3> distancesM = {0.06f, 0.1f, 0.15f};
    for (const double hertz : {400.0, 800.0}) {
        std::array<double, 24> cardioids{};
        std::array<double, 3> together{}, alone{};
        double pressures = 0.0;
        std::array<double, 3> expected{};
        MicrophoneArray array(speakers, rate, size);
        std::size_t numBins = 0;
        for (std::size_t start = 24000; start + size <= tail[0].size(); start += size / 2) {
            // Late frames count like early ones.
            array.Hear(signals, start, std::pow(10.0, 3.0 * static_cast<double>(start) / rate / decaySeconds));
            for (auto bin = static_cast<std::size_t>(hertz / std::numbers::sqrt2 * size / rate) + 1;
                 static_cast<double>(bin) * rate / size < hertz * std::numbers::sqrt2; ++bin, ++numBins) {
                const double wavenumber =
                    2.0 * std::numbers::pi * static_cast<double>(bin) * rate / size / speedOfSound;
                const std::complex<double> pressure = array.At({}, bin);
                pressures += std::norm(pressure);
                std::array<std::complex<double>, 3> velocity;
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    velocity[axis] =
                        (array.At(axes[axis] * halfGaugeM, bin) - array.At(axes[axis] * -halfGaugeM, bin)) /
                        (2.0 * std::complex<double>(0.0, std::sin(wavenumber * static_cast<double>(halfGaugeM))));
                    for (std::size_t k = 0; k < distancesM.size(); ++k) {
                        const std::complex<double> a = array.At(axes[axis] * (0.5f * distancesM[k]), bin),
                                                   b = array.At(axes[axis] * (-0.5f * distancesM[k]), bin);
                        together[k] += (a * std::conj(b)).real();
                        alone[k] += 0.5 * (std::norm(a) + std::norm(b));
                        const double phase = wavenumber * static_cast<double>(distancesM[k]);
                        expected[k] += 0.5 * (std::norm(a) + std::norm(b)) * std::sin(phase) / phase;
                    }
                }
                for (std::size_t look = 0; look < 24; ++look)
                    cardioids[look] += std::norm(0.5 * (pressure + static_cast<double>(speakers[look].x) * velocity[0] +
                                                        static_cast<double>(speakers[look].y) * velocity[1] +
                                                        static_cast<double>(speakers[look].z) * velocity[2]));
            }
        }
        ASSERT_GT(numBins, 1000u);
        for (const double power : cardioids)
            EXPECT_NEAR(10.0 * std::log10(3.0 * power / pressures), 0.0, 1.0) << hertz << " Hz";
        for (std::size_t k = 0; k < distancesM.size(); ++k)
            EXPECT_NEAR(together[k] / alone[k], expected[k] / alone[k], 0.05)
                << hertz << " Hz, " << distancesM[k] << " m";
    }
}

}  // namespace
