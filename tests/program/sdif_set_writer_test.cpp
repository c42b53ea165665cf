#include "orvanverb/hrtf/sdif_set_writer.h"

#include <gtest/gtest.h>

#include <array>

#include "hrtf/asymmetric_transaural_data_loader.h"
#include "hrtf/hrtf.h"
#include "hrtf/nearfield_compensation_filters.h"
#include "hrtf/sdif_access.h"
#include "hrtf/symmetric_transaural_data_loader.h"
#include "program/sound_files.h"

namespace {

constexpr unsigned int numPoints = 7;

/// A set in which no two numbers are alike, with an odd number of coefficients, so that matrices need padding.
Lume::SdifSet MakeSet(Lume::HrtfType type, Lume::HrtfFilterType filterType, unsigned int positionsPerPoint = 1) {
    Lume::SdifSet set;
    set.header.owner = "An institute\tof\nacoustics {x}";
    set.header.subject = "subject 12";
    set.header.copyright = "CC BY; see there";
    set.header.hrtfType = type;
    set.header.filterType = filterType;
    set.header.flagItdExtracted = Lume::itdExtracted;
    set.header.originalMeasurementSet = "set";
    set.header.interpolationSet = "";
    set.header.numCoefficients = 5;
    set.header.numChannels = 3;
    set.header.samplingRate = 96000;
    set.header.date = "2024-02-29 12:00";
    float value = 0.1f;
    for (unsigned int i = 0; i < numPoints; ++i) {
        Lume::SdifSetPoint point;
        for (unsigned int k = 0; k < positionsPerPoint; ++k)
            point.positions.push_back({value += 0.3f, value += 0.3f, -(value += 0.3f)});
        point.itd = filterType == Lume::hrtfFIR ? 0.0f : (value += 0.3f);
        for (unsigned int k = 0; k < 15; ++k) point.coefficients.push_back(value += 0.3f);
        set.points.push_back(point);
    }
    return set;
}

/// To the last bit: no value here is 0 or not a number.
void ExpectSame(Lume::CartesianVector const& a, Lume::CartesianVector const& b) {
    EXPECT_EQ((std::array{a.x, a.y, a.z}), (std::array{b.x, b.y, b.z}));
}

// Red if a matrix has the wrong order, width or type, or a key is missing: what the engine's loaders read is what was
// written, to the last bit, in each kind of file.
TEST(SdifSetWriter, TheEngineReadsBackWhatWasWritten) {
    const TemporaryDirectory directory;
    const auto write = [&](char const* name, Lume::SdifSet const& set) {
        WriteText(directory / name, program::SdifSetBytes(set, "me"));
        return directory / name;
    };
    const auto expect = [](Lume::SdifSet const& set, Lume::HrtfData const& data) {
        ASSERT_EQ(data.GetNumPoints(), numPoints);
        for (unsigned int i = 0; i < numPoints; ++i) {
            Lume::HrtfPoint const& point = data.GetHrtfPoint(i);
            ExpectSame(point.position, set.points[i].positions[0]);
            EXPECT_EQ(point.itd, set.points[i].itd);
            EXPECT_EQ(point.coefficients, set.points[i].coefficients);
        }
    };
    const Lume::SdifSet biquads = MakeSet(Lume::hrtfBinaural, Lume::hrtfBiquadCells);
    const Lume::Hrtf hrtf(write("a.hrtf", biquads));
    expect(biquads, hrtf);
    Lume::HrtfHeaderInfos const& header = hrtf.GetHrtfHeaderInfos();
    EXPECT_EQ(header.owner, "An institute of acoustics  x");
    EXPECT_EQ(header.subject, biquads.header.subject);
    EXPECT_EQ(header.copyright, biquads.header.copyright);
    EXPECT_EQ(header.flagItdExtracted, Lume::itdExtracted);
    EXPECT_EQ(header.flagInterpolated, Lume::dataNotInterpolated);
    EXPECT_EQ(header.originalMeasurementSet, "set");
    EXPECT_EQ(header.interpolationSet, "");
    EXPECT_EQ(header.samplingRate, 96000u);
    EXPECT_EQ(header.date, biquads.header.date);

    const Lume::SdifSet fir = MakeSet(Lume::hrtfBinaural, Lume::hrtfFIR);
    expect(fir, Lume::Hrtf(write("fir.hrtf", fir)));
    const Lume::SdifSet near = MakeSet(Lume::hrtfNearfieldCompensationFilter, Lume::hrtfBiquadCells);
    expect(near, Lume::NearfieldCompensationFilters(write("a.near", near)));
    const Lume::SdifSet symmetric = MakeSet(Lume::hrtfBinauralToTransauralShufflerSymmetric, Lume::hrtfFIR);
    expect(symmetric, Lume::SymmetricTransauralDataLoader(write("a.bin2trans", symmetric)));

    const Lume::SdifSet pairs = MakeSet(Lume::hrtfBinauralToTransauralLeastSquares, Lume::hrtfFIR, 2);
    const Lume::AsymmetricTransauralDataLoader loaded(write("pairs.bin2trans", pairs));
    EXPECT_EQ(loaded.GetHrtfHeaderInfos().hrtfType, Lume::hrtfBinauralToTransauralLeastSquares);
    ASSERT_EQ(loaded.GetNumPoints(), numPoints);
    for (unsigned int i = 0; i < numPoints; ++i) {
        ExpectSame(loaded.GetTransauralPoint(i).leftPosition, pairs.points[i].positions[0]);
        ExpectSame(loaded.GetTransauralPoint(i).rightPosition, pairs.points[i].positions[1]);
        EXPECT_EQ(loaded.GetTransauralPoint(i).coefficients, pairs.points[i].coefficients);
    }
}

// The engine's loaders don't trust the size of a frame, others do: stepping by the sizes alone must meet every frame
// and end with the file. Types that the file doesn't declare would be refused elsewhere.
TEST(SdifSetWriter, FramesHaveTheirSizeAndTypesAreDeclared) {
    const TemporaryDirectory directory;
    WriteText(directory / "a.hrtf", program::SdifSetBytes(MakeSet(Lume::hrtfBinaural, Lume::hrtfBiquadCells), "me"));
    Lume::SdifGenInitCond("");
    const Lume::SdifFilePointer file(Lume::SdifFOpen((directory / "a.hrtf").c_str(), Lume::SdifReadFile));
    ASSERT_NE(file, nullptr);
    std::size_t read = Lume::SdifFReadGeneralHeader(file.get()) + Lume::SdifFReadAllASCIIChunks(file.get());
    for (const Lume::SdifSignature type : {Lume::SdifSignatureOf("HRTF"), Lume::SdifSignatureOf("XPOS"),
                                           Lume::SdifSignatureOf("XITD"), Lume::SdifSignatureOf("XIIR")})
        EXPECT_TRUE(Lume::SdifFIsTypeKnown(file.get(), type)) << Lume::SdifSignatureToString(type);
    unsigned int numFrames = 0;
    do {
        EXPECT_EQ(Lume::SdifFCurrFrameSignature(file.get()), Lume::SdifSignatureOf("HRTF"));
        read += Lume::SdifFReadFrameHeader(file.get()) + Lume::SdifFSkipFrameData(file.get());
        EXPECT_EQ(Lume::SdifFCurrID(file.get()), ++numFrames);
    } while (Lume::SdifFGetSignature(file.get(), &read) != Lume::SdifEndOfFile);
    EXPECT_EQ(Lume::SdifFLastError(file.get()), nullptr);
    EXPECT_EQ(numFrames, numPoints);
    EXPECT_EQ(read, Lume::SdifFGetSize(file.get()));
}

}  // namespace
