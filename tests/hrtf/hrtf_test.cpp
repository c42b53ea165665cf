#include "hrtf/hrtf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "hrtf/builtin_sets.h"
#include "hrtf/coll_file.h"
#include "hrtf/hrtf_filtering.h"
#include "hrtf/max_msp_coll_file_parser.h"
#include "hrtf/nearfield_compensation_filters.h"
#include "hrtf/spherical_harmonic_data.h"
#include "support/failure.h"
#include "support/places.h"
#include "support/signals.h"
#include "support/temporary_file.h"

namespace {

using Lume::Hrtf;

/// Rows whose first value is the number of the row and whose others are tenths of it.
std::string Rows(int numRows, int numValues) {
    std::ostringstream text;
    for (int row = 1; row <= numRows; ++row) {
        text << row << ", " << row;
        for (int i = 1; i < numValues; ++i) text << ' ' << static_cast<double>(row) * 0.1;
        text << ";\n";
    }
    return text.str();
}

/// What loading a .coll file says.
std::string LoadingSays(std::string const& content) {
    const TemporaryFile file(".coll", content);
    return FailureOf([&] { Hrtf loaded(file.name); }).message;
}

void ExpectPosition(Lume::CartesianVector const& position, double azimuthToTheLeft, double elevation) {
    EXPECT_LT(Length(position - At(-azimuthToTheLeft, elevation)), 1e-6f) << azimuthToTheLeft << " " << elevation;
}

// Red if rings run clockwise, the mirrored row is off by one, or the ears change places.
TEST(Hrtf, RowsOfOneEarBecomePointsOfTwo) {
    const TemporaryFile file("-S12-48000.coll", Rows(710, 26));
    const Hrtf set(file.name);
    ASSERT_EQ(set.GetNumPoints(), 710u);
    EXPECT_EQ(set.GetNumCoefficients(), 25u);
    EXPECT_EQ(set.GetSamplingRate(), 48000u);
    EXPECT_EQ(set.GetFlagItdExtracted(), Lume::itdExtracted);
    EXPECT_EQ(set.GetHrtfHeaderInfos().owner, "ORVAN");
    EXPECT_EQ(set.GetHrtfHeaderInfos().subject, "S12-48000.coll");  // as long as what stands before the dash
    EXPECT_EQ(set.GetHrtfHeaderInfos().flagInterpolated, Lume::dataInterpolated);

    const struct {
        unsigned int row, mirrored;
        double azimuthToTheLeft, elevation;
    } cases[] = {{0, 0, 0, -40},     {260, 260, 0, 0},  {278, 314, 90, 0},
                 {296, 296, 180, 0}, {261, 331, 5, 0},  {592, 592, 0, 50},
                 {593, 636, 8, 50},  {709, 709, 0, 90}, {55, 1, 55 * 360.0 / 56, -40}};
    for (auto const& expected : cases) {
        Lume::HrtfPoint const& point = set.GetHrtfPoint(expected.row);
        EXPECT_EQ(point.index, expected.row);
        ExpectPosition(point.position, expected.azimuthToTheLeft, expected.elevation);
        EXPECT_EQ(point.itd, static_cast<float>(expected.row) - static_cast<float>(expected.mirrored));
        ASSERT_EQ(point.coefficients.size(), 50u);
        EXPECT_NEAR(point.coefficients[24], 0.1 * (expected.row + 1.0), 1e-5) << expected.row;
        EXPECT_NEAR(point.coefficients[25], 0.1 * (expected.mirrored + 1.0), 1e-5) << expected.row;
    }
    unsigned int row = 0;
    int elevation = -40;
    for (const unsigned int size : {56u, 60u, 72u, 72u, 72u, 72u, 72u, 60u, 56u, 45u, 36u, 24u, 12u}) {
        ExpectPosition(set.GetHrtfPoint(row).position, 0.0, elevation);
        ExpectPosition(set.GetHrtfPoint(row + 1).position, 360.0 / size, elevation);
        row += size, elevation += 10;
    }
    for (unsigned int i = 0; i < 710; ++i) {
        Lume::HrtfPoint const& point = set.GetHrtfPoint(i);
        const unsigned int mirrored =
            set.GetNearestHrtfPoint({-point.position.x, point.position.y, point.position.z}).index;
        ASSERT_EQ(point.index, i);
        ASSERT_NEAR(point.coefficients[24], 0.1 * (i + 1.0), 1e-5) << i;
        ASSERT_NEAR(point.coefficients[25], 0.1 * (mirrored + 1.0), 1e-5) << i;
    }
    EXPECT_EQ(set.GetNearestHrtfPoint({-9.0f, 0.2f, 0.1f}).index, 278u);
}

TEST(Hrtf, AnyOtherNameIsTheBuiltInSet) {
    for (char const* const name : {"", "kemar", "a.wav"}) {
        const Hrtf set(name);
        ASSERT_EQ(set.GetNumPoints(), 710u);
        EXPECT_EQ(set.GetFlagItdExtracted(), Lume::itdNotExtracted);
        for (unsigned int i = 0; i < 50; ++i)
            EXPECT_EQ(set.GetHrtfPoint(279).coefficients[i],
                      Lume::builtinSets.front().rows[i < 25 ? 279 : 313][i % 25 + 1]);
    }
}

TEST(Hrtf, BadTextsAreRefusedAndLeaveTheSetAsItWas) {
    EXPECT_EQ(LoadingSays(Rows(709, 26)), "not enough measures");
    EXPECT_EQ(LoadingSays(Rows(711, 26)), "not enough measures");
    EXPECT_EQ(LoadingSays(Rows(710, 27)), "the number of coefficients doesn't match");
    EXPECT_EQ(LoadingSays(""), "the number of coefficients doesn't match");
    const auto with = [](std::string const& beginning, std::string const& instead) {
        std::string text = Rows(710, 26);
        return text.replace(text.find(beginning), beginning.size(), instead);
    };
    for (char const* const bad : {"\n700, 1 2 3;\n", "\n700, nan 1e99;\n"})
        EXPECT_EQ(LoadingSays(with("\n700, ", std::string(bad) + "700. ")), "the number of coefficients doesn't match");
    EXPECT_EQ(LoadingSays(with("\n700, 700 ", "\n700, 1e6 ")), "a delay is longer than any between two ears");
    Hrtf set("");
    // The second name has both forms, and counts as a text.
    for (char const* const name : {"no/such/file.coll", "no.coll.hrtf"})
        EXPECT_NE(FailureOf([&] { set.LoadFromFile(name); }).line.find(std::string("can't open the file ") + name),
                  std::string::npos);
    EXPECT_EQ(set.GetNumPoints(), 710u);
}

TEST(MaxMSPCollFileParser, OnlyRowsInOrderCount) {
    std::istringstream text(
        "  1 , 0.5 -2e0\t+3 ; 9\r\n3, 1 1 1;\nfoo\n2x, 1;\n2, 4 5 6 7;\r3, 8;4, 9;\n4, 1 x 2;\n5, 3");
    const Lume::MaxMSPCollFileParser parser(text);
    EXPECT_EQ(parser.numRows, 4u);
    EXPECT_EQ(parser.numValuesPerRow, 3u);
    EXPECT_EQ(parser.rows.at(1), (std::vector<float>{0.5f, -2.0f, 3.0f}));
    EXPECT_EQ(parser.rows.at(2), (std::vector<float>{4.0f, 5.0f, 6.0f}));
    EXPECT_EQ(parser.rows.at(3), (std::vector<float>{8.0f}));
    EXPECT_EQ(parser.rows.at(4), (std::vector<float>{1.0f}));
    EXPECT_FALSE(parser.HasEqualRows());
}

TEST(CollFile, NamesCarryData) {
    EXPECT_EQ(Lume::GetSubjectFromCollFilename("abc-KEM-44100.coll", "x"), "KEM");
    EXPECT_EQ(Lume::GetSubjectFromCollFilename("a-KEM-44100.coll", "x"), "K");
    EXPECT_EQ(Lume::GetSubjectFromCollFilename("abc", "x"), "x");
    EXPECT_EQ(Lume::GetSamplingRateFromCollFileName("abc-KEM-48000.coll", 1), 48000u);
    EXPECT_EQ(Lume::GetSamplingRateFromCollFileName("abc-KEM.coll", 1), 1u);
    EXPECT_EQ(Lume::GetSamplingRateFromCollFileName("x.coll-48000", 1), 1u);
}

TEST(CollFile, PositionsAreReadFromATable) {
    std::vector<Lume::CartesianVector> positions(3);
    const TemporaryFile good(".txt", "\n# xyz\r\n 1 2 3 \n\n-1 0.5 0 surplus\n");
    EXPECT_TRUE(Lume::ReadPositionsFromTextFile(good.name, positions));
    ASSERT_EQ(positions.size(), 2u);
    EXPECT_EQ(positions[1].y, 0.5f);
    for (char const* const bad : {"", "1 2 3\n", "xyz\n1 2\n", "xyz\n1 2 x\n"}) {
        const TemporaryFile file(".txt", bad);
        EXPECT_FALSE(Lume::ReadPositionsFromTextFile(file.name, positions)) << bad;
    }
}

TEST(NearfieldCompensationFilters, EmptyNameIsAnEmptySet) {
    const Lume::NearfieldCompensationFilters set("");
    EXPECT_EQ(set.GetMaxDistance(), 0.0f);
    EXPECT_EQ(set.GetHrtfHeaderInfos().hrtfType, 1);
    EXPECT_EQ(set.GetNearestHrtfPoint({1.0f, 0.0f, 0.0f}).position.y, 1.0f);
    const Failure failure = FailureOf([] { Lume::NearfieldCompensationFilters other("a.hrtf"); });
    EXPECT_EQ(failure.message, "invalid file extension a.hrtf");
}

/// A set of given positions.
struct PositionSet : Lume::HrtfData {
    explicit PositionSet(std::vector<Lume::CartesianVector> const& positions) {
        std::vector<Lume::HrtfPoint> newPoints;
        for (auto const& position : positions) {
            newPoints.emplace_back().position = position;
            newPoints.back().index = static_cast<unsigned int>(newPoints.size()) - 1;
        }
        SetPoints(std::move(newPoints));
    }
    void LoadFromFile(std::string const&) override {}
};

// Red if the last of equals wins, or if angles are compared.
TEST(HrtfData, NearestPointIsTheFirstOfEquals) {
    const PositionSet set({{0, 1, 0}, {1, 0, 0}, {1, 0, 0}, {0.4f, 0, 0}});
    EXPECT_EQ(set.GetNearestHrtfPoint({1, 0, 0}).index, 1u);
    EXPECT_EQ(set.GetNearestHrtfPoint({0.1f, 0, 0}).index, 3u);
    EXPECT_EQ(set.GetNearestHrtfPoint({std::nanf(""), 0, 0}).index, 0u);
}

// A rate gets the set whose own rate is nearest by its ratio.
TEST(Hrtf, BuiltinIsTheNearestInRate) {
    for (auto const& [rate, wanted] : {std::pair{8000.0f, 44100u},
                                       {44100.0f, 44100u},
                                       {46000.0f, 44100u},
                                       {46100.0f, 48000u},
                                       {65000.0f, 48000u},
                                       {65100.0f, 88200u},
                                       {768000.0f, 192000u},
                                       {0.0f, 44100u},
                                       {std::nanf(""), 44100u}})
        EXPECT_EQ(Hrtf::Builtin(rate).GetSamplingRate(), wanted) << rate;
}

TEST(Hrtf, TypesAndFlagsHaveNames) {
    for (int i = 0; i <= 8; ++i) {
        const auto type = static_cast<Lume::HrtfType>(i);
        EXPECT_EQ(Lume::GetHrtfType(Lume::GetHrtfTypeName(type)), type);
    }
    for (int i = 0; i <= 5; ++i) {
        const auto type = static_cast<Lume::HrtfFilterType>(i);
        EXPECT_EQ(Lume::GetHrtfFilterType(Lume::GetHrtfFilterTypeName(type)), type);
    }
    EXPECT_EQ(Lume::GetHrtfTypeName(static_cast<Lume::HrtfType>(9)) +
                  Lume::GetHrtfFilterTypeName(static_cast<Lume::HrtfFilterType>(6)),
              "");
    std::string flags;
    for (int i = 0; i <= 2; ++i)
        flags += Lume::GetFlagItdExtracted(static_cast<Lume::FlagItdExtracted>(i)) + "|" +
                 Lume::GetFlagDataInterpolated(static_cast<Lume::FlagDataIterpolated>(i)) + "|";
    EXPECT_EQ(flags,
              "itd not extracted|data have not been interpolated|itd extracted|data have been interpolated|"
              "unknown itd flag|unknown data interpolated flag|");
}

// Red if a way to an ear that changes its filters keeps something of the former ones, or forgets rate or block.
TEST(HrtfFiltering, FiltersThatAreChosenLaterAreTheSame) {
    using Lume::HrtfFiltering;
    const std::vector<float> noise = MakeNoise(5, 4096), first = MakeNoise(1, 9, 0.2f), second = MakeNoise(2, 9, 0.2f);
    const auto play = [&](HrtfFiltering& way, std::size_t block) {
        way.SetNumCoefficients(9);
        way.SetSamplerate(32000.0f);
        way.SetFIRFiltersImplementationMethod(orvandsp::Filter::fftconvolution);
        way.SetMaxBlockSize(static_cast<unsigned int>(block));
        way.SetCoefficients(first, false);
        way.SetDelay(25.0f, true);
        std::vector<float> out(noise.size()), in = noise;
        for (std::size_t at = 0; at < in.size(); at += block) {
            if (at == 1024) way.SetCoefficients(second, false);
            if (at == 2048) way.SetDelay(0.9f, false);
            if (at == 3072) way.Clear();
            way.Process(&out[at], &in[at], block);
        }
        return out;
    };
    for (auto const& [type, other] : {std::pair{Lume::biquadFilters, Lume::firFilter},
                                      {Lume::firFilter, Lume::biquadFilters},
                                      {Lume::firFilter, Lume::noFilter},
                                      {Lume::noFilter, Lume::firFilter}}) {
        HrtfFiltering made(type, true), changed(other, true), inParts(type, true);
        changed.SetFilterType(type);
        const std::vector<float> heard = play(made, 1024), parts = play(inParts, 64);
        EXPECT_TRUE(heard == play(changed, 1024)) << type;
        EXPECT_EQ(heard == noise, type == Lume::noFilter);
        for (std::size_t i = 0; i < heard.size(); ++i) ASSERT_NEAR(heard[i], parts[i], 1e-3f) << type << " " << i;
    }
}

/// Harmonics up to the first order in two bins, each value telling its ear, row and bin.
struct FirstOrder : Lume::SphericalHarmonicData {
    FirstOrder() {
        for (auto* const ear : {&left, &right}) {
            *ear = orvandsp::Matrix<std::complex<float>>(4, 2, 0.0f);
            for (unsigned int row = 0; row < 4; ++row)
                for (unsigned int bin = 0; bin < 2; ++bin)
                    (*ear)[row][bin] = {ear == &left ? 1.0f : 2.0f, static_cast<float>(10 * row + bin)};
        }
    }
};

TEST(SphericalHarmonicData, AHarmonicHasItsRow) {
    const FirstOrder data;
    EXPECT_EQ(data.GetData(0, 0, 0, 1), std::complex(1.0f, 0.0f));
    EXPECT_EQ(data.GetData(1, -1, 0, 1), std::complex(1.0f, 10.0f));
    EXPECT_EQ(data.GetData(1, 0, 1, 2), std::complex(2.0f, 21.0f));
    EXPECT_EQ(data.GetData(1, 1, 1, 2), std::complex(2.0f, 31.0f));
    EXPECT_EQ(
        data.GetData(2, -2, 0, 1) + data.GetData(0, 0, 2, 1) + data.GetData(0, 0, 0, 0) + data.GetData(0, 0, 0, 3),
        0.0f);
}

}  // namespace
