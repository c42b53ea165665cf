#include "engine/room_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "engine/engine_rig.h"
#include "geometry/named_layout.h"
#include "geometry/orientation.h"
#include "geometry/speakers.h"
#include "pan/diffuse/solid_angle_mixing.h"
#include "support/places.h"

namespace {

using Recording = EngineRig::Recording;

EngineRig MakeRoom(char const* format, unsigned int numSpeakers, unsigned int numInternals) {
    return {1, numSpeakers, numInternals, 48000.0f, 64, format};
}

/// What a constant signal of a source becomes in the direct layer.
std::vector<float> DirectGains(char const* format, unsigned int numSpeakers, Lume::CartesianVector const& place) {
    EngineRig room = MakeRoom(format, numSpeakers, 4);
    room.engine.SetSourcePosition(0, place);
    room.engine.SetDirectGain(0.0f);
    std::vector<float> gains = room.ConstantLevels();
    for (float& gain : gains) gain *= std::sqrt(4.0f);  // sources over internal channels
    return gains;
}

/// The late field by itself.
Recording LateField(char const* format, unsigned int numSpeakers, unsigned int numInternals, float decaySeconds,
                    Positions const& speakers = {}) {
    EngineRig room = MakeRoom(format, numSpeakers, numInternals);
    if (!speakers.empty()) room.engine.SetSpeakersPositions(speakers.data());
    room.engine.SetReverbGain(0.0f);
    room.engine.SetDecayTime(decaySeconds);
    room.engine.SetRelativeDecayHigh(1.0f);
    room.engine.UseAirAbsorption(false);
    room.Settle();
    return room.ImpulseResponse(3.5);
}

/// From when it is dense.
Recording Tail(char const* format, unsigned int numSpeakers, unsigned int numInternals,
               Positions const& speakers = {}) {
    Recording tail = LateField(format, numSpeakers, numInternals, 4.0f, speakers);
    for (auto& channel : tail) channel.erase(channel.begin(), channel.begin() + 24000);
    return tail;
}

double Product(std::vector<float> const& a, std::vector<float> const& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += static_cast<double>(a[i]) * static_cast<double>(b[i]);
    return sum;
}

double Correlation(std::vector<float> const& a, std::vector<float> const& b) {
    return Product(a, b) / std::sqrt(Product(a, a) * Product(b, b));
}

double Decibels(double power) {
    return 10.0 * std::log10(power);
}

// A source at the front left and above has positive Y, Z and X in the form that other tools read. Red if the axes
// aren't turned, or turned the other way.
TEST(RoomFormat, AmbixCountsToTheLeft) {
    const std::vector<float> gains = DirectGains("ambix", 9, At(-30.0, 20.0));
    for (std::size_t c = 0; c < 9; ++c) EXPECT_NEAR(gains[c], AmbixHarmonics(-30.0, 20.0)[c], 1e-4) << c;
}

// Of constant power; places beside and behind the pair fold onto it.
TEST(RoomFormat, StereoPairTakesEveryDirection) {
    const std::vector<float> ahead = DirectGains("stereo", 2, At(12.0)), behind = DirectGains("stereo", 2, At(168.0));
    EXPECT_NEAR(ahead[0] * ahead[0] + ahead[1] * ahead[1], 1.0, 1e-3);
    EXPECT_NEAR(behind[1], ahead[1], 1e-3);
    EXPECT_NEAR(DirectGains("stereo", 2, At(100.0))[1], 1.0, 1e-3);
}

// Red if a turned head hears anything but the directions that it has: against sources that were turned the other way.
// Early reflections too, which follow the source that was placed last; distances stay. Without heights the yaw counts
// alone.
TEST(RoomFormat, EveryFormTurnsWithTheListener) {
    const std::map<std::string, unsigned int> forms{{"", 6},      {"binaural", 2}, {"stereo", 2},  {"xy", 2},
                                                    {"ms", 2},    {"ab", 2},       {"angular", 6}, {"vbap2d", 5},
                                                    {"vbap", 8},  {"dome", 8},     {"dbap", 6},    {"dbap3d", 8},
                                                    {"vdbap", 8}, {"hoa2d", 7},    {"hoa3d", 9},   {"ambix", 16}};
    const Lume::Orientation head{-50.0f, 35.0f, 20.0f};
    for (auto const& [name, numOutputs] : forms) {
        Recording heard[2];
        for (const bool turns : {false, true}) {
            EngineRig room(2, numOutputs, 4, 48000.0f, 64, name.empty() ? nullptr : name.c_str());
            if (numOutputs == 8) room.engine.SetSpeakersPositions(Lume::Speakers::cube);
            room.engine.SetDirectGain(0.0f);
            room.engine.SetEarlyGain(6.0f);
            const Lume::RoomFormat* const format = room.engine.GetFormat();
            const bool inSpace = format != nullptr && format->inSpace;
            const auto rotation = Lume::RoomToHead(inSpace ? head : Lume::Orientation{head.yaw, 0.0f, 0.0f});
            const Lume::CartesianVector places[] = {{2.0f, 1.0f, 0.6f}, {-0.5f, 1.5f, 0.2f}};
            for (const unsigned int source : {1u, 0u})  // the first one last
                room.engine.SetSourcePosition(source, turns ? places[source] : Lume::Rotated(rotation, places[source]));
            if (turns) room.engine.SetOrientation(head);
            room.Settle();
            heard[turns ? 1 : 0] = room.ImpulseResponse(0.06);
        }
        double difference = 0.0, energy = 0.0;
        for (std::size_t j = 0; j < heard[0].size(); ++j) {
            energy += Product(heard[0][j], heard[0][j]);
            for (std::size_t i = 0; i < heard[0][j].size(); ++i)
                difference += std::pow(static_cast<double>(heard[0][j][i]) - static_cast<double>(heard[1][j][i]), 2);
        }
        EXPECT_GT(energy, 0.1) << name;
        // Delays of the filters glide there on other ways.
        EXPECT_LT(Decibels(difference / energy), name.empty() || name == "binaural" || name == "ab" ? -50.0 : -90.0)
            << name;
    }
}

// Red if the shares of the sphere are others than geometry gives, or don't reach the field: octahedron and cube by
// symmetry, a dome whose ring stands for the upper half alone.
TEST(RoomFormat, DomesSpreadTheLateFieldBySolidAngle) {
    using Layout = std::vector<Lume::CartesianVector>;
    const auto octahedron =
        Lume::SolidAngleShares(Layout{{1, 0, 0}, {-2, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 3}, {0, 0, -1}});
    for (unsigned int i = 0; i < 6; ++i) EXPECT_NEAR(octahedron[i], 1.0 / 6.0, 0.002);
    // A ring and a loudspeaker above meet at 45 degrees.
    const auto half = Lume::SolidAngleShares(Layout{{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}});
    double top = 0.0;  // below pi/4 seen from above each sector ends where cos(el) cos(az) = sin(el)
    constexpr int steps = 10000;
    for (int i = 0; i < steps; ++i)
        top += (1.0 - std::sin(std::atan(std::cos((i + 0.5) / steps * std::numbers::pi / 4.0)))) / steps;
    EXPECT_NEAR(half[4], top, 0.002);
    EXPECT_NEAR(half[0], (1.0 - top) / 4.0, 0.002);

    const Lume::NamedLayout layout = Lume::FindNamedLayout("dome24");
    const Recording tail = Tail("dome", 24, 16, layout.positions);
    const auto shares = Lume::SolidAngleShares(layout.positions);
    double sum = 0.0;
    for (auto const& channel : tail) sum += Product(channel, channel);
    for (std::size_t j = 0; j < tail.size(); ++j)
        EXPECT_NEAR(Decibels(Product(tail[j], tail[j]) / sum / static_cast<double>(shares[j])), 0.0, 1.0) << j;
}

// The ring's own late field has four signals, so that front left and front right play the same one.
TEST(RoomFormat, LateFieldIsAnotherOneInEveryLoudspeaker) {
    for (char const* format : {"vbap2d", "stereo", "angular", "vbap"}) {
        const Recording tail = Tail(format, std::string(format) == "stereo" ? 2 : 8, 8);
        for (std::size_t j = 0; j < tail.size(); ++j) {
            EXPECT_NEAR(Decibels(Product(tail[j], tail[j]) / Product(tail[0], tail[0])), 0.0, 1.0) << format << j;
            for (std::size_t k = 0; k < j; ++k)
                EXPECT_LT(std::abs(Correlation(tail[j], tail[k])), 0.1) << format << ": " << j << " " << k;
        }
    }
}

// The power that arrives in the sum of all loudspeakers, or in the pressure of a sound field, is one and the same, from
// the beginning on: red if a form plays some channels for all, since lines with short delays begin up to 5 dB above the
// mean.
TEST(RoomFormat, LateFieldIsEquallyLoudInEveryForm) {
    const std::map<std::string, unsigned int> forms{{"binaural", 2}, {"stereo", 2}, {"xy", 2},
                                                    {"vbap2d", 6},   {"vbap", 8},   {"dbap", 5},
                                                    {"hoa2d", 7},    {"hoa3d", 9},  {"ambix", 16}};
    const Recording ring = LateField(nullptr, 6, 8, 0.5f);
    double reference = 0.0;
    for (auto const& channel : ring) reference += Product(channel, channel);
    for (auto const& [name, numOutputs] : forms) {
        const Recording tail = LateField(name.c_str(), numOutputs, 8, 0.5f);
        double power = Product(tail[0], tail[0]);
        if (Lume::FindRoomFormat(name)->outputs != Lume::RoomFormat::Outputs::harmonics)
            for (std::size_t j = 1; j < tail.size(); ++j) power += Product(tail[j], tail[j]);
        if (name == "hoa2d") power *= 2.0;  // whose W is scaled by sqrt(1/2)
        EXPECT_NEAR(Decibels(power / reference), 0.0, 1.0) << name;
    }
}

TEST(RoomFormat, NumbersOfOutputsAreRefusedThatAFormatHasNot) {
    const auto supports = [](char const* name, unsigned int n) {
        return Lume::OrvanVerb::SupportsConfiguration(*Lume::FindRoomFormat(name), 1, n, 8);
    };
    EXPECT_TRUE(supports("stereo", 2) && supports("ambix", 64) && supports("hoa2d", 15) && supports("vbap", 24));
    EXPECT_FALSE(supports("stereo", 3) || supports("ambix", 8) || supports("ambix", 1) || supports("vbap", 2));
    EXPECT_EQ(Lume::FindRoomFormat("quad"), nullptr);
}

}  // namespace
