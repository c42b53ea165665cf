#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <sstream>
#include <string>

#include "hrtf/asymmetric_transaural_data_loader.h"
#include "hrtf/symmetric_transaural_data_loader.h"
#include "support/failure.h"
#include "support/sdif_writer.h"
#include "support/temporary_file.h"

namespace {

using Lume::AsymmetricTransauralDataLoader;
using Lume::SymmetricTransauralDataLoader;

/// Rows whose first value is their delay, and whose others tell row and place.
std::string Rows(int numRows, int numValues) {
    std::ostringstream text;
    for (int row = 1; row <= numRows; ++row) {
        text << row << ", 9";
        for (int i = 1; i < numValues; ++i) text << ' ' << row * 100 + i;
        text << ";\n";
    }
    return text.str();
}

template <typename Loader>
std::string LoadingSays(std::string const& fileName) {
    return FailureOf([&] { Loader loaded(fileName); }).message;
}

// Red if angles run to the right, begin at 0, or if the two rows of a point change places or keep their delays.
TEST(SymmetricTransauralDataLoader, TwoRowsMakeAnAngle) {
    const TemporaryFile file("-S12-48000.coll", Rows(34, 26));
    const SymmetricTransauralDataLoader set(file.name);
    ASSERT_EQ(set.GetNumPoints(), 17u);
    EXPECT_EQ(set.GetSamplingRate(), 48000u);
    EXPECT_EQ(set.GetHrtfHeaderInfos().hrtfType, Lume::hrtfBinauralToTransauralShufflerSymmetric);
    EXPECT_EQ(set.GetFlagItdExtracted(), Lume::itdExtracted);
    for (unsigned int p = 0; p < 17; ++p) {
        Lume::HrtfPoint const& point = set.GetHrtfPoint(p);
        const double angle = (p + 1) * 10.0 * std::numbers::pi / 180.0;
        EXPECT_NEAR(point.position.x, -std::sin(angle), 1e-6) << p;
        EXPECT_NEAR(point.position.y, std::cos(angle), 1e-6) << p;
        ASSERT_EQ(point.coefficients.size(), 50u);
        EXPECT_EQ(point.coefficients[0], static_cast<float>((2 * p + 1) * 100 + 1));
        EXPECT_EQ(point.coefficients[25], static_cast<float>((2 * p + 2) * 100 + 1));
        EXPECT_EQ(point.itd, 0.0f);
        EXPECT_EQ(point.index, p);
    }
}

TEST(SymmetricTransauralDataLoader, OtherNamesStandForTheBuiltInSet) {
    for (char const* name : {"", "kemar", "whatever.sdif"}) {
        const SymmetricTransauralDataLoader set(name);
        EXPECT_EQ(set.GetNumPoints(), 17u) << name;
        EXPECT_EQ(set.GetHrtfPoint(16).coefficients.size(), 50u) << name;
        EXPECT_EQ(set.GetSamplingRate(), 44100u) << name;
    }
}

// Red if a bad file is taken, if a message changes, or if a set is lost through a load that failed.
TEST(SymmetricTransauralDataLoader, BadTextsAreNamedAndChangeNothing) {
    const auto failure = [](std::string const& text) {
        const TemporaryFile file(".coll", text);
        return LoadingSays<SymmetricTransauralDataLoader>(file.name);
    };
    EXPECT_EQ(failure(Rows(33, 26)), "not enough measures");
    EXPECT_EQ(failure(Rows(34, 27)), "the number of coefficients doesn't match");
    EXPECT_EQ(failure("1, 0.5;\n" + Rows(34, 26)), "the number of coefficients doesn't match");
    EXPECT_EQ(failure(""), "the number of coefficients doesn't match");
    EXPECT_EQ(LoadingSays<SymmetricTransauralDataLoader>("no such file.coll"), "can't open the file");

    SymmetricTransauralDataLoader set("");
    std::istringstream stream(Rows(20, 26));
    EXPECT_NE(FailureOf([&] { set.LoadFromColl(stream); }).message, "");
    EXPECT_EQ(set.GetNumPoints(), 17u);
}

std::string TransauralFile(char const* dataType, std::uint32_t positionsPerFrame) {
    SdifWriter writer;
    writer.TextFrame(
        "1NVT", std::string("TableName\tHrtfInfos\nOwner\to\nAuthor\ta\nSubject\ts\nCopyright\tc\n") + "DataType\t" +
                    dataType + "\nFiltersType\tBiquads\nITDExtracted\t1\nSpatialInterpolation\t0\nMeasurementSet\tm\n" +
                    "InterpolationSet\ti\nFiltersLength\t1\nNumChannels\t4\nSamplingRate\t48000\n" +
                    "NumPoints\t3\nGenerated\tnow\n");
    // Left loudspeaker at x = -1, -2, -3; right one at x = 1, 1, 2.
    const double left[] = {-1, -2, -3}, right[] = {1, 1, 2};
    for (std::uint32_t i = 0; i < 3; ++i) {
        std::vector<double> positions = {left[i], 0, 0, right[i], 0, 0};
        positions.resize(3ul * positionsPerFrame);
        const double code = 10.0 * i;
        writer.Frame("HRTF", i + 1,
                     {{"XPOS", 8, positionsPerFrame, 3, positions},
                      {"XIIR", 8, 4, 1, {code, code + 1, code + 2, code + 3}},
                      {"XITD", 8, 1, 1, {0.25}}});
    }
    return writer.bytes;
}

// Red if only one of the two positions counts, if a tie goes to the later point, or if the rows change places.
TEST(AsymmetricTransauralDataLoader, FindsTheNearestPairOfLoudspeakers) {
    const TemporaryFile file(".bin2trans", TransauralFile("BinauralToTransauralShufflerAsymmetric", 2));
    const AsymmetricTransauralDataLoader set(file.name);
    ASSERT_EQ(set.GetNumPoints(), 3u);
    EXPECT_EQ(set.GetTransauralPoint(1).leftPosition.x, -2.0f);
    EXPECT_EQ(set.GetTransauralPoint(1).rightPosition.x, 1.0f);
    EXPECT_EQ(set.GetTransauralPoint(2).coefficients, (std::vector{20.0f, 21.0f, 22.0f, 23.0f}));
    EXPECT_EQ(set.GetTransauralPoint(2).numChannels, 4u);
    EXPECT_EQ(set.GetTransauralPoint(2).itd, 0.25f);
    EXPECT_EQ(set.GetNearestTransauralPoint({-2.4f, 0, 0}, {1.0f, 0, 0}).index, 1u);
    EXPECT_EQ(set.GetNearestTransauralPoint({-2.4f, 0, 0}, {2.4f, 0, 0}).index, 2u);
    EXPECT_EQ(set.GetNearestTransauralPoint({-1.5f, 0, 0}, {1.0f, 0, 0}).index, 0u);
}

TEST(AsymmetricTransauralDataLoader, BadFilesAreNamed) {
    EXPECT_EQ(LoadingSays<AsymmetricTransauralDataLoader>("kemar"), "invalid file extension kemar");
    const TemporaryFile one(".bin2trans", TransauralFile("BinauralToTransauralShufflerAsymmetric", 1));
    EXPECT_EQ(LoadingSays<AsymmetricTransauralDataLoader>(one.name), "exception reading XPOS matrix " + one.name);
    // And a symmetric set must have one.
    const TemporaryFile two(".bin2trans", TransauralFile("BinauralToTransauralShufflerSymmetric", 2));
    EXPECT_EQ(LoadingSays<SymmetricTransauralDataLoader>(two.name), "exception reading XPOS matrix " + two.name);
}

}  // namespace
