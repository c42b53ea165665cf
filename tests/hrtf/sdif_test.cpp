#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "hrtf/hrtf.h"
#include "hrtf/nearfield_compensation_filters.h"
#include "hrtf/sdif_access.h"
#include "support/failure.h"
#include "support/memory_file.h"
#include "support/sdif_writer.h"
#include "support/temporary_file.h"

namespace {

using Lume::Hrtf;

constexpr char types[] = "{ 1MTD XPOS {x, y, z} 1MTD XIIR {c} 1FTD HRTF { XPOS position; XIIR filter; } }";

/// The lines of a header for 2 points of 2 x 2 coefficients, with one key given another value, or none if that is "-".
std::string Header(std::string const& key = "", std::string const& value = "", char const* separator = "\t",
                   char const* end = "\n") {
    const std::pair<char const*, char const*> pairs[] = {
        {"TableName", "HrtfInfos"},   {"Owner", "Some Institute"},  {"Author", "A. N. Other"},
        {"Subject", "S 12"},          {"Copyright", "free"},        {"DataType", "Binaural"},
        {"FiltersType", "Biquads"},   {"ITDExtracted", "1"},        {"SpatialInterpolation", "0"},
        {"MeasurementSet", "Full"},   {"InterpolationSet", "none"}, {"FiltersLength", "2"},
        {"NumChannels", "2"},         {"SamplingRate", "48000"},    {"NumPoints", "2"},
        {"Generated", "1 April 2004"}};
    std::string text;
    for (auto const& [name, standard] : pairs) {
        const std::string own = key == name ? value : standard;
        if (own != "-") text += std::string(name) + separator + own + end;
    }
    return text;
}

SdifMatrix Position(double x, double y, double z, char const* signature = "XPOS") {
    return {signature, 8, 1, 3, {x, y, z}};
}

SdifMatrix Filter(double first, std::uint32_t dataType = 8, char const* signature = "XIIR") {
    return {signature, dataType, 2, 2, {first, first + 1, first + 2, first + 3}};
}

SdifMatrix Delay(double value) {
    return {"XITD", 8, 1, 1, {value}};
}

/// A right file: its points come in reverse order, with strangers in between.
SdifWriter GoodSet(std::string const& header = Header()) {
    SdifWriter writer;
    writer.TextFrame("1NVT", "Maker\tsomebody\n");
    writer.TextFrame("1NVT", header);
    writer.TextFrame("1TYP", types);
    writer.BareChunk("1IDS", "{ 1 x:y; }");
    // Three bytes of a matrix nobody knows: red if its padding isn't read.
    writer.Frame("HRTF", 2, {{"XXXX", 0x101, 3, 1, {1, 2, 3}}, Filter(10, 4), Delay(-0.25), Position(-1, 0, 0)});
    writer.Frame("WHAT", 7, {Position(5, 5, 5)});
    writer.Frame("HRTF", 1, {Position(0, 0, 1), Filter(20)});
    return writer;
}

/// What loading a file says, with NAME for its name, or "" if it loads.
template <typename Set>
std::string LoadingSays(std::string const& content, std::string const& end) {
    const TemporaryFile file(end, content);
    std::string message = FailureOf([&] { Set loaded(file.name); }).message;
    if (const std::size_t at = message.find(file.name); at != std::string::npos)
        message.replace(at, file.name.size(), "NAME");
    return message;
}

TEST(Sdif, SetIsReadWithStrangersSkipped) {
    SdifWriter bare;
    bare.BareChunk("1NVT", "1NVT { Maker x; }");
    bare.BareChunk("1NVT", "{\n" + Header("Owner", " Some Institute \t", "  ", ";\n") + "}");
    const std::string good = GoodSet().bytes;
    const std::string frames = good.substr(good.find("HRTF", good.find("1IDS")));
    for (std::string const& content : {good, bare.bytes + frames}) {
        const TemporaryFile file(".hrtf", content);
        Hrtf set("");
        EXPECT_EQ(FailureOf([&] { set.LoadFromFile(file.name); }).line, "unexpected frames WHAT\n");
        ASSERT_EQ(set.GetNumPoints(), 2u);
        EXPECT_EQ(set.GetHrtfHeaderInfos().owner, "Some Institute");
        EXPECT_EQ(set.GetHrtfHeaderInfos().date, "1 April 2004");
        EXPECT_EQ(set.GetHrtfHeaderInfos().filterType, Lume::hrtfBiquadCells);
        EXPECT_EQ(set.GetFlagItdExtracted(), Lume::itdExtracted);
        EXPECT_EQ(set.GetSamplingRate(), 48000u);
        EXPECT_EQ(set.GetHrtfPoint(1).coefficients, (std::vector<float>{10, 11, 12, 13}));
        EXPECT_EQ(set.GetHrtfPoint(1).itd, -0.25f);
        EXPECT_EQ(set.GetHrtfPoint(1).position.x, -1.0f);
        EXPECT_EQ(set.GetHrtfPoint(0).coefficients, (std::vector<float>{20, 21, 22, 23}));
        EXPECT_EQ(set.GetHrtfPoint(0).position.z, 1.0f);
        EXPECT_EQ(set.GetHrtfPoint(0).numChannels, 2u);
    }
}

TEST(Sdif, WhatIsWrongIsSaid) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto frames = [](std::vector<SdifMatrix> const& matrices, std::string const& header = Header()) {
        SdifWriter writer;
        writer.TextFrame("1NVT", header);
        writer.Frame("HRTF", 1, matrices);
        writer.Frame("HRTF", 2, {});
        return writer.bytes;
    };
    const std::string fir = Header("FiltersType", "FIR");
    std::string cut = frames({Position(1, 2, 3)});
    cut.resize(cut.size() - 32);  // the second frame and the last coordinate
    SdifWriter oldVersion(2), more = GoodSet(), stranger = GoodSet();
    oldVersion.TextFrame("1NVT", Header());
    more.Frame("HRTF", 1, {});
    stranger.Frame("HRTF", 0, {});
    // Of no points, with filters that who loads it would make room for.
    SdifWriter empty;
    empty.TextFrame("1NVT", "FiltersLength\t1000000000\n" + Header("NumPoints", "0"));
    empty.Frame("XXXX", 0, {});
    const std::pair<std::string, std::string> cases[] = {
        {frames({}), ""},
        {"RIFF", "invalid file NAME"},
        {oldVersion.bytes, "invalid header NAME"},
        {GoodSet(Header("NumPoints", "-3")).bytes, "invalid header NAME"},
        {GoodSet(Header("NumPoints", "2000000000")).bytes, "invalid header NAME"},
        {GoodSet(Header("FiltersLength", "99999999999")).bytes, "invalid header NAME"},
        {empty.bytes, "invalid header NAME"},
        // Points without coefficients would still take a hundred bytes each.
        {GoodSet("FiltersLength\t0\n" + Header("NumPoints", "100000000")).bytes, "invalid header NAME"},
        {GoodSet(Header("TableName", "Infos")).bytes, "invalid header NAME"},
        {GoodSet(Header("DataType", "Stereo")).bytes, "unknown hrtf type Stereo"},
        {GoodSet(Header("FiltersType", "IIR")).bytes, "unknown hrtf filter type IIR"},
        {stranger.bytes, "too many HRTF frames ? NAME"},
        {more.bytes, "invalid number of HRTF frames ? NAME"},
        {frames({{"XPOS", 4, 1, 3, {1, 2, 3}}}), "Invalid XPOS matrix"},
        {frames({Position(1, infinity, 0)}), "Invalid XPOS matrix"},
        {frames({{"XPOS", 8, 0xffffffff, 3, {}}}), "Invalid XPOS matrix"},
        {cut, "error reading file NAME"},
        {frames({{"XAED", 8, 1, 2, {1, 2}}}), "Invalid XAED matrix"},
        {frames({Position(1e30, 0, 1, "XAED")}), "Invalid XAED matrix"},
        {frames({{"XPOS", 8, 2, 3, {1, 2, 3, 4, 5, 6}}}), "exception reading XPOS matrix NAME"},
        {frames({{"XAED", 8, 0, 3, {}}}), "exception reading XAED matrix NAME"},
        {frames({{"XITD", 8, 2, 1, {1, 2}}}), "Invalid ITD matrix"},
        {frames({Delay(1e5)}), "Invalid ITD matrix"},
        {frames({{"XIIR", 8, 5, 1, {1, 2, 3, 4, 5}}}), "Invalid Filter matrix ! "},
        {frames({Filter(std::nan(""))}), "Invalid Filter matrix ! "},
        {frames({{"XIIR", 0x701, 4, 1, {1, 2, 3, 4}}}), "error reading file NAME"},
        {frames({{"XXXX", 0xff, 0xffffffff, 0xffffffff, {}}}), "error reading file NAME"},
        {frames({Filter(1, 8, "XFIR")}), "unexpected XFIR matrix ? NAME"},
        {frames({Filter(1, 8, "XFIR")}, fir), ""},
        {frames({Filter(1)}, fir), "XIIR matrix with FIR filters ? NAME"},
        {frames({Delay(1)}, fir), "XITD matrix with FIR filters ? NAME"},
    };
    for (auto const& [content, message] : cases) {
        EXPECT_EQ(LoadingSays<Hrtf>(content, ".hrtf"), message);
        EXPECT_EQ(LoadingSays<Lume::NearfieldCompensationFilters>(content, ".near"), message);
    }
    for (char const* const key : {"Owner", "Author", "Subject", "Copyright", "DataType", "FiltersType", "ITDExtracted",
                                  "SpatialInterpolation", "MeasurementSet", "InterpolationSet", "FiltersLength",
                                  "NumChannels", "SamplingRate", "NumPoints", "Generated"})
        EXPECT_EQ(LoadingSays<Hrtf>(GoodSet(Header(key, "-")).bytes, ".hrtf"), "invalid header NAME") << key;
}

// Red if any size is trusted, or if half a file replaces what was loaded. Under the sanitizers this covers over-reads.
TEST(Sdif, TruncatedAndCorruptedFilesLeaveTheSetAsItWas) {
    const std::string good = GoodSet().bytes;
    const TemporaryFile whole(".hrtf", good);
    const MemoryFile file;
    Hrtf set(whole.name);
    for (std::size_t length = 0; length < good.size(); ++length) {
        ASSERT_TRUE(file.Write(good.substr(0, length)));
        EXPECT_NE(FailureOf([&] { set.LoadFromHRTF(file.name); }).message, "") << length;
    }
    EXPECT_EQ(set.GetHrtfPoint(1).coefficients[0], 10.0f);
    EXPECT_EQ(set.GetHrtfHeaderInfos().owner, "Some Institute");

    std::mt19937 random(4);
    for (int round = 0; round < 3000; ++round) {
        std::string bad = good;
        for (unsigned int i = 0; i <= random() % 3; ++i) bad[random() % bad.size()] = static_cast<char>(random());
        ASSERT_TRUE(file.Write(bad));
        FailureOf([&] { set.LoadFromHRTF(file.name); });
        ASSERT_EQ(set.GetHrtfPoint(0).coefficients.size(), set.GetNumCoefficients() * set.GetNumChannels());
    }
}

// Closed forms. Red if the azimuth turns the wrong way, the fold goes over the pole instead of about it, or a negative
// distance only flips the sign.
TEST(Sdif, AnglesBecomePositions) {
    struct Case {
        double azimuth, elevation, distance, x, y, z;
    };
    const double c = std::cos(std::numbers::pi / 18), s = std::sin(std::numbers::pi / 18);  // 10 degrees
    for (const Case& expected : {Case{90, 0, 2, 2, 0, 0}, Case{-450, 0, 1, -1, 0, 0}, Case{0, 10, 1, 0, c, s},
                                 Case{0, 100, 1, 0, -c, -s}, Case{0, -100, 1, 0, -c, s}, Case{0, 10, -1, 0, -c, -s}}) {
        SdifWriter writer;
        writer.TextFrame("1NVT", Header());
        writer.Frame("HRTF", 1, {Position(expected.azimuth, expected.elevation, expected.distance, "XAED")});
        writer.Frame("HRTF", 2, {});
        const TemporaryFile file(".hrtf", writer.bytes);
        const Lume::CartesianVector position = Hrtf(file.name).GetHrtfPoint(0).position;
        SCOPED_TRACE(testing::Message() << expected.azimuth << " " << expected.elevation);
        EXPECT_NEAR(position.x, expected.x, 1e-6);
        EXPECT_NEAR(position.y, expected.y, 1e-6);
        EXPECT_NEAR(position.z, expected.z, 1e-6);
    }
}

// Numbers of every type that a file can have, by the reader's own calls, as other programs walk through a file.
TEST(Sdif, EveryTypeOfNumberIsRead) {
    const std::pair<std::uint32_t, std::vector<double>> numbers[] = {{0x004, {1.5, -2.25}},
                                                                     {0x008, {1e300, -0.1}},
                                                                     {0x101, {-128, 127}},
                                                                     {0x102, {-32768, 258}},
                                                                     {0x104, {-2147483648.0, 16909060}},
                                                                     {0x108, {-1, 1099511627776.0}},
                                                                     {0x201, {255, 7}},
                                                                     {0x202, {65535, 258}},
                                                                     {0x204, {4294967295.0, 5}},
                                                                     {0x208, {1099511627777.0, 3}}};
    for (auto const& [type, values] : numbers) {
        SdifWriter writer = GoodSet();
        writer.Frame("XNUM", 9,
                     {{"XNUM", type, 2, 1, values}, {"XNUM", type, 1, 2, values}, {"XNUM", type, 1, 1, {1}}});
        const TemporaryFile path(".sdif", writer.bytes);
        const Lume::SdifFilePointer file(Lume::SdifFOpen(path.name.c_str(), Lume::SdifReadFile));
        // What the calls say that they read adds up to the file.
        std::size_t numBytes = Lume::SdifFReadGeneralHeader(file.get());
        numBytes += Lume::SdifFReadAllASCIIChunks(file.get());
        for (int frame = 0; frame < 3; ++frame) {  // those of the set, whose first signature is read already
            numBytes += Lume::SdifFReadFrameHeader(file.get());
            numBytes += Lume::SdifFSkipFrameData(file.get());
            ASSERT_EQ(Lume::SdifFGetSignature(file.get(), &numBytes), 0);
        }
        numBytes += Lume::SdifFReadFrameHeader(file.get());
        EXPECT_TRUE(Lume::SdifFCurrID(file.get()) == 9 && Lume::SdifFCurrNbMatrix(file.get()) == 3);
        EXPECT_FALSE(Lume::SdifFIsTypeKnown(file.get(), Lume::SdifFCurrFrameSignature(file.get())));
        for (const std::uint32_t rows : {2u, 1u}) {
            numBytes += Lume::SdifFReadMatrixHeader(file.get());
            EXPECT_EQ(Lume::SdifFCurrDataType(file.get()), type);
            std::size_t read = 0;
            for (std::uint32_t row = 0; row < rows; ++row) {
                read += Lume::SdifFReadOneRow(file.get());
                EXPECT_EQ(Lume::SdifFCurrOneRowCol(file.get(), 1), values[row]) << type;
                EXPECT_EQ(Lume::SdifFCurrOneRowCol(file.get(), 2), rows == 1 ? values[1] : 0.0) << type;
                EXPECT_EQ(Lume::SdifFCurrOneRowCol(file.get(), 0), 0.0);
            }
            numBytes += read + Lume::SdifFReadPadding(file.get(), Lume::SdifFPaddingCalculate(file.get(), read));
        }
        numBytes += Lume::SdifFReadMatrixHeader(file.get());
        const std::size_t skipped = Lume::SdifFSkipMatrixData(file.get());
        numBytes += skipped + Lume::SdifFReadPadding(file.get(), Lume::SdifFPaddingCalculate(file.get(), skipped));
        EXPECT_EQ(numBytes, Lume::SdifFGetSize(file.get()));
        EXPECT_EQ(Lume::SdifFGetSignature(file.get(), &numBytes), Lume::SdifEndOfFile);
        EXPECT_EQ(Lume::SdifFLastError(file.get()), nullptr);
        EXPECT_EQ(Lume::SdifFGetSize(file.get()), writer.bytes.size());
    }
    const TemporaryFile good(".sdif", GoodSet().bytes), other(".sdif", GoodSet(Header("TableName", "Infos")).bytes),
        none(".sdif", "");
    EXPECT_TRUE(Lume::ContainsHrtfInfosHeader(good.name));
    EXPECT_FALSE(Lume::ContainsHrtfInfosHeader(other.name) || Lume::ContainsHrtfInfosHeader(none.name) ||
                 Lume::ContainsHrtfInfosHeader("/nowhere"));
    Lume::HrtfHeaderInfos header;
    EXPECT_EQ(FailureOf([&] { EXPECT_FALSE(Lume::GetHrtfHeaderInfos("/nowhere", header)); }).line,
              "error reading /nowhere\n");
    const Lume::SdifFilePointer file(Lume::SdifFOpen(other.name.c_str(), Lume::SdifReadFile));
    Lume::SdifFReadGeneralHeader(file.get());
    Lume::SdifFReadAllASCIIChunks(file.get());
    std::vector<std::string> names;
    Lume::GetListOfNVTTableNames(file.get(), names);
    EXPECT_EQ(names, std::vector<std::string>{"Infos"});
}

}  // namespace
