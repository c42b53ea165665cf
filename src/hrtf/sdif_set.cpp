#include "hrtf/sdif_set.h"

#include <algorithm>

#include "dsp/console.h"
#include "dsp/orvan_dsp_exception.h"
#include "hrtf/sdif_access.h"

namespace Lume {

namespace {

[[noreturn]] void Fail(char const* message, std::string const& fileName) {
    throw orvandsp::OrvanDspException(message + fileName, __FILE__, __LINE__);
}

/// Reads the frames of one file into the points of a set.
class FrameReader {
public:
    FrameReader(SdifFileT* openFile, std::string const& name, unsigned int positionsPerPoint, SdifSet& target)
        : file(openFile), fileName(name), numPositions(positionsPerPoint), set(target) {}

    void ReadAll() {
        MakeRoom();
        unsigned int numFrames = 0;
        bool more = true;
        while (more && SdifFLastError(file) == nullptr) {
            SdifFReadFrameHeader(file);
            if (SdifFLastError(file) != nullptr) break;
            if (SdifFCurrFrameSignature(file) != SdifSignatureOf("HRTF")) {
                orvandsp::WriteToConsole(
                    orvandsp::Console::error,
                    std::string("unexpected frames ") + SdifSignatureToString(SdifFCurrFrameSignature(file)));
                SdifFSkipFrameData(file);
            } else {
                ++numFrames;
                ReadFrame();
            }
            std::size_t numBytes = 0;
            more = SdifFGetSignature(file, &numBytes) != SdifEndOfFile;
        }
        if (SdifFLastError(file) != nullptr) Fail("error reading file ", fileName);
        if (numFrames != set.header.numPoints) Fail("invalid number of HRTF frames ? ", fileName);
    }

private:
    /// The counts come from a text, so they must first be such that the file can hold what they promise: a header for
    /// each frame, and at least a byte for each coefficient of each point. A set without points promises no more than
    /// one with a point: who takes the set makes room for a filter all the same.
    void MakeRoom() {
        const std::uint64_t size = SdifFGetSize(file);
        const std::uint64_t numPoints = set.header.numPoints;
        const std::uint64_t numValues = std::uint64_t{set.header.numCoefficients} * set.header.numChannels;
        if (numPoints > size / SdifFrameHeaderSize || numValues > size / std::max<std::uint64_t>(numPoints, 1))
            Fail("invalid header ", fileName);
        set.points.resize(static_cast<std::size_t>(numPoints));
        for (SdifSetPoint& point : set.points) point.coefficients.resize(static_cast<std::size_t>(numValues));
    }

    void ReadFrame() {
        // A stream ID of 0 wraps to a number that no set has.
        const std::uint32_t index = SdifFCurrID(file) - 1;
        if (index >= set.points.size()) Fail("too many HRTF frames ? ", fileName);
        const std::uint32_t numMatrices = SdifFCurrNbMatrix(file);
        for (std::uint32_t i = 0; i < numMatrices && SdifFLastError(file) == nullptr; ++i) {
            SdifFReadMatrixHeader(file);
            if (SdifFLastError(file) != nullptr) return;
            const std::size_t numBytes = ReadMatrix(set.points[index]);
            SdifFReadPadding(file, SdifFPaddingCalculate(file, numBytes));
        }
    }

    std::size_t ReadMatrix(SdifSetPoint& point) {
        const bool isFir = set.header.filterType == hrtfFIR;
        switch (SdifFCurrMatrixSignature(file)) {
            case SdifSignatureOf("XPOS"): {
                const std::size_t numBytes = ReadXPOSMatrix(file, point.positions);
                CheckPositions(point, "exception reading XPOS matrix ");
                return numBytes;
            }
            case SdifSignatureOf("XAED"): {
                const std::size_t numBytes = ReadXAEDMatrix(file, point.positions, true);
                CheckPositions(point, "exception reading XAED matrix ");
                return numBytes;
            }
            case SdifSignatureOf("XITD"):
                if (isFir) Fail("XITD matrix with FIR filters ? ", fileName);
                return ReadXITDMatrix(file, point.itd);
            case SdifSignatureOf("XIIR"):
                if (isFir) Fail("XIIR matrix with FIR filters ? ", fileName);
                return ReadXIIRMatrix(file, point.coefficients);
            case SdifSignatureOf("XFIR"):
                if (!isFir) Fail("unexpected XFIR matrix ? ", fileName);
                return ReadXFIRMatrix(file, point.coefficients);
            default:
                return SdifFSkipMatrixData(file);
        }
    }

    /// A file that ends within the matrix has an error of its own.
    void CheckPositions(SdifSetPoint const& point, char const* message) const {
        if (SdifFLastError(file) == nullptr && point.positions.size() != numPositions) Fail(message, fileName);
    }

    SdifFileT* file;
    std::string const& fileName;
    unsigned int numPositions;
    SdifSet& set;
};

}  // namespace

SdifSet ReadSdifSet(std::string const& fileName, unsigned int numPositions) {
    SdifSet set;
    if (!IsValidSdifFile(fileName)) Fail("invalid file ", fileName);
    if (!GetHrtfHeaderInfos(fileName, set.header)) Fail("invalid header ", fileName);
    const SdifFilePointer file(SdifFOpen(fileName.c_str(), SdifReadFile));
    if (file == nullptr) Fail("couldnt open file ", fileName);
    SdifFReadGeneralHeader(file.get());
    SdifFReadAllASCIIChunks(file.get());
    FrameReader(file.get(), fileName, numPositions, set).ReadAll();
    return set;
}

}  // namespace Lume
