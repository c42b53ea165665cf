#include "object/coordinates.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "object/coordinates_from_atoms.h"
#include "object/orvanverb_class.h"
#include "object/parameters_from_atoms.h"
#include "object/recording_box.h"
#include "patcher/atom.h"
#include "support/places.h"

namespace {

using Lume::CartesianVector;

class Coordinates : public testing::Test {
protected:
    Coordinates() : box((orvanverb_main(), "orvanverb~ @numsources 6 @numspeakers 4")) { box.Lines(); }

    void ExpectSource(CartesianVector const& expected, float tolerance = 2e-6f) {
        const auto value = *box.box.GetAttribute("sourcespositions");
        ExpectNear({atom_getfloat(&value[0]), atom_getfloat(&value[1]), atom_getfloat(&value[2])}, expected, tolerance);
    }
    static void ExpectNear(CartesianVector const& position, CartesianVector const& expected, float tolerance) {
        EXPECT_NEAR(position.x, expected.x, tolerance);
        EXPECT_NEAR(position.y, expected.y, tolerance);
        EXPECT_NEAR(position.z, expected.z, tolerance);
    }

    RecordingBox box;
};

constexpr double degrees = std::numbers::pi / 180.0;

// Every format from (1, 2, 3), by what a listener would see.
TEST_F(Coordinates, FormatsMoveTheSource) {
    const double r = std::sqrt(14.0), az = std::atan2(1.0, 2.0) / degrees, el = std::asin(3.0 / r) / degrees;
    const struct {
        char const* message;
        CartesianVector expected;
    } cases[] = {
        {"xyz 4 5 6", {4, 5, 6}},
        {"xy 4 5", {4, 5, 0}},
        {"x++ 1", {2, 2, 3}},
        {"y++ -1", {1, 1, 3}},
        {"z++ 0.5", {1, 2, 3.5f}},
        {"x 7", {7, 2, 3}},
        {"y 7", {1, 7, 3}},
        {"z 7", {1, 2, 7}},
        {"ade 90 2 0", {2, 0, 0}},
        {"ade -45 2 30", At(-45, 30, 2)},
        {"aed 200 -20 3", At(200, -20, 3)},
        {"ae 30 40", At(30, 40, 1)},
        {"ad 765 2", At(45, 0, 2)},
        {"az -90", {-1, 0, 0}},
        {"ade 0 -2 0", {0, -2, 0}},
        {"ade 10 -2 30", At(190, -30, 2)},
        {"ade 0 1 100", At(180, -10, 1)},  // the fold about the pole: 90 - 100
        {"ade 0 1 -100", At(180, 10, 1)},
        {"azim 45", At(45, el, r)},
        {"azim++ 20", At(az + 20, el, r)},
        {"elev 10", At(az, 10, r)},
        {"elev 100", At(az, -10, r)},
        {"elev -100", At(az, 10, r)},
        {"elev 370", At(az, 10, r)},
        {"elev++ 10", At(az, el - 10, r)},
        {"dist 2", At(az, el, 2)},
        {"dist -2", At(az, el, 2)},
        {"dist++ 1", At(az, el, r + 1)},
        {"dist++ -100", At(az, el, 1e-5)},
        {"dist 0", At(az, el, 1e-5)},
        {"lume3 90 2 0", {-2, 0, 0}},
        {"lume3 30 2 15", At(-30, 15, 2)},
        {"lume3 30 2", At(-30, el, 2)},
        {"lume3 30", At(-30, el, r)},
        {"lume3 30 2 15 9", At(-30, 15, 2)},
        {"wfs 90 20", {-2, 0, 0}},
    };
    for (auto const& [message, expected] : cases) {
        SCOPED_TRACE(message);
        box.Send("source 1 xyz 1 2 3");
        EXPECT_EQ(box.Send(std::string("source 1 ") + message), "");
        ExpectSource(expected);
    }
}

// Red if steps lead where no step leads back from: an infinity, or what isn't a number.
TEST_F(Coordinates, SourcesStayInReach) {
    box.Send("source 1 xyz 3e38 0 0");
    const std::string before = box.Get("sourcespositions");
    for (char const* const message :
         {"source 1 x++ 3e38", "source 1 dist++ 1", "source 1 azim 45", "source 1 lume3 45"})
        EXPECT_EQ(box.Send(message), "error: error reading source coordinates|") << message;
    EXPECT_EQ(box.Get("sourcespositions"), before);
    EXPECT_EQ(box.Send("source 1 dist 2"), "");
    ExpectSource({2, 0, 0});
}

// What other objects of the family read with: a listener, and points as many as there are.
TEST_F(Coordinates, ListenersAndPointsAreReadFromLists) {
    const auto read = [this](char const* text, unsigned int capacity) {
        const auto atoms = max::ParseAtoms(text);
        std::vector<CartesianVector> at(std::max(capacity, 1u), {9, 9, 9});
        const auto count = static_cast<long>(atoms.size());
        unsigned int number = 1;
        std::ostringstream found;
        found << (capacity == 0 ? get_listener_coordinates_from_atoms(box.Object(), count, atoms.data(), at[0])
                                : get_points_coordinates_from_atoms(box.Object(), capacity, count, atoms.data(),
                                                                    at.data(), number));
        for (unsigned int i = 0; i < number; ++i) found << " " << at[i].x << "," << at[i].y << "," << at[i].z;
        return found.str() + " " + box.Lines();
    };
    EXPECT_EQ(read("xyz 1 2 3 4", 0), "1 1,2,3 warn: too many listener positions. only 1 position will be read|");
    EXPECT_EQ(read("xyz 1 2", 0), "0 9,9,9 error: invalid listener message|");
    EXPECT_EQ(read("xyz 1 2 far", 0), "0 9,9,9 error: error reading listener position|");
    EXPECT_EQ(read("xy 1 2 3 4", 3), "1 1,2,0 3,4,0 ");
    EXPECT_EQ(read("xyz 1 2 3 4 5 6", 2), "1 1,2,3 4,5,6 ");
    EXPECT_EQ(read("x 1 2 3", 2), "1 1,9,9 2,9,9 warn: too many point positions. only 2 positions will be read|");
    EXPECT_EQ(read("xy 1 2 3", 3), "0 1,2,0 error: error reading 1 th point position|");
}

// Out and in again is where it was, but for wfs, whose way out leaves out half a turn.
TEST_F(Coordinates, PositionsBecomeAtomsAndComeBack) {
    const CartesianVector position{-1.5f, 0.5f, 0.75f};
    t_atom atoms[3];
    for (const auto format : {coordinates_xyz, coordinates_ade, coordinates_aed, coordinates_lume3}) {
        ASSERT_TRUE(coordinates2atoms(position, format, 3, atoms));
        CartesianVector back{};
        ASSERT_TRUE(atoms2coordinates(back, format, 3, atoms));
        SCOPED_TRACE(format);
        ExpectNear(back, position, 1e-6f);
    }
    const std::tuple<CoordinatesFormat, long, std::string> parts[] = {
        {coordinates_xy, 2, "-1.5 0.5 "}, {coordinates_ae, 2, "-71.565 25.3769 "}, {coordinates_ad, 2, "-71.565 1.75 "},
        {coordinates_az, 1, "-71.565 "},  {coordinates_wfs, 2, "71.5651 17.5 "},   {coordinates_x, 1, "no "}};
    for (auto const& [format, count, expected] : parts) {
        std::ostringstream text;
        if (!coordinates2atoms(position, format, count, atoms))
            text << "no ";
        else
            for (long i = 0; i < count; ++i) text << atom_getfloat(&atoms[i]) << " ";
        EXPECT_EQ(text.str(), expected);
        EXPECT_FALSE(coordinates2atoms(position, format, count + 1, atoms));
    }
}

TEST_F(Coordinates, KeywordsAreLookedUpWithTheirOddFallback) {
    CoordinatesFormat format{};
    long stride = 0;
    t_symbol* keyword = nullptr;
    get_coordinates_format_and_stride(gensym("elev++"), box.Object(), format, stride, keyword);
    EXPECT_TRUE(format == 13 && stride == 1 && keyword == gensym("elev++"));
    get_coordinates_format_and_stride(gensym("foo"), box.Object(), format, stride, keyword);
    EXPECT_TRUE(format == 6 && stride == 3);
    EXPECT_EQ(box.Lines(), "warn: unknown coordinate type: foo. using default coordinate type (ade)|");
}

TEST_F(Coordinates, ParameterListsAreReadInTheirForms) {
    const std::pair<char const*, std::array<float, 6>> cases[] = {
        {"hlshelf 99 -99 1 2 3 30000", {10, -30, 1, 2, 20, 20000}},
        {"gains 9 8 7 6", {9, 8, 7, 6, 100, 200}},
        {"freqs 50 60", {1, 2, 3, 4, 50, 60}},
        {"gm 100", {1, 2, 20, 4, 100, 200}},
        {"Gh -5", {1, 2, 3, -5, 100, 200}},
        {"6 5 4 3 70 80", {6, 5, 4, 3, 70, 80}},
    };
    for (auto const& [text, expected] : cases) {
        Lume::HLShelfParameters p{1, 2, 3, 4, 100, 200};
        const auto atoms = max::ParseAtoms(text);
        EXPECT_TRUE(atoms2hlshelf(p, static_cast<long>(atoms.size()), atoms.data()));
        EXPECT_EQ((std::array{p.gain, p.gainLow, p.gainMed, p.gainHigh, p.freqLow, p.freqHigh}), expected) << text;
    }
    Lume::HLShelfParameters kept{1, 2, 3, 4, 100, 200};
    for (char const* const text : {"gm 0", "Gx 1", "gm", "1 2 3 4 5", "params 1 2 3 4 5", ""}) {
        const auto atoms = max::ParseAtoms(text);
        EXPECT_FALSE(atoms2hlshelf(kept, static_cast<long>(atoms.size()), atoms.data())) << text;
    }
    post_hlshelf_parameters(box.Object(), kept, "shelf");
    EXPECT_EQ(box.Lines(), "post: shelf : 1.000000 2.000000 3.000000 4.000000 100.000000 200.000000 |");
    Lume::ReverbDspParameters p{};
    const auto reverb = [&p](char const* text) {
        const auto atoms = max::ParseAtoms(text);
        return atoms2reverb(p, static_cast<long>(atoms.size()), atoms.data());
    };
    EXPECT_TRUE(reverb("times 4 0.9 0.8 0.7") && reverb("freqs 111 2222") && reverb("gain -3"));
    EXPECT_FALSE(reverb("gain 1 2 3 4") || reverb("times 1") || reverb("gain 1 2"));  // the form of times decides
    EXPECT_EQ((std::array{p.gain, p.decayTime, p.relativeDecayLow, p.relativeDecayMedium, p.relativeDecayHigh,
                          p.crossoverFrequencyLow, p.crossoverFrequencyHigh}),
              (std::array{-3.0f, 4.0f, 0.9f, 0.8f, 0.7f, 111.0f, 2222.0f}));
}

}  // namespace
