#include "hrtf/symmetric_transaural_data_loader.h"

#include <fstream>
#include <sstream>
#include <utility>

#include "dsp/orvan_dsp_exception.h"
#include "geometry/azimuth_distance_elevation.h"
#include "hrtf/builtin_sets.h"
#include "hrtf/coll_file.h"
#include "hrtf/max_msp_coll_file_parser.h"

namespace Lume {

namespace {

constexpr unsigned int numChannels = 2;
constexpr unsigned int numAngles = 17;
constexpr unsigned int numCoefficients = 25;
constexpr float degreesPerPoint = 10.0f;

/// The left loudspeaker of a point, numbered from 1.
CartesianVector PositionOf(unsigned int number) {
    return FromAzimuthDistanceElevation(-degreesPerPoint * static_cast<float>(number), 1.0f, 0.0f);
}

std::vector<HrtfPoint> ReadPoints(std::istream& stream, HrtfHeaderInfos const& header) {
    const MaxMSPCollFileParser parser(stream);
    if (parser.numValuesPerRow != header.numCoefficients + 1 || !parser.HasEqualRows())
        throw orvandsp::OrvanDspException("the number of coefficients doesn't match", __FILE__, __LINE__);
    if (parser.numRows != 2ul * header.numPoints)
        throw orvandsp::OrvanDspException("not enough measures", __FILE__, __LINE__);

    std::vector<HrtfPoint> points(header.numPoints);
    for (unsigned int p = 1; p <= header.numPoints; ++p) {
        HrtfPoint& point = points[p - 1];
        point.position = PositionOf(p);
        point.numCoefficients = header.numCoefficients;
        point.numChannels = numChannels;
        point.index = p - 1;
        for (const unsigned int row : {2 * p - 1, 2 * p}) {
            std::vector<float> const& values = parser.rows.at(static_cast<int>(row));
            point.coefficients.insert(point.coefficients.end(), values.begin() + 1, values.end());
        }
    }
    return points;
}

/// What both texts of the set have in common.
HrtfHeaderInfos Header() {
    HrtfHeaderInfos header;
    header.hrtfType = hrtfBinauralToTransauralShufflerSymmetric;
    header.filterType = hrtfBiquadCells;
    header.interpolationSet = "unknown";
    header.numCoefficients = numCoefficients;
    header.numChannels = numChannels;
    header.numPoints = numAngles;
    return header;
}

}  // namespace

SymmetricTransauralDataLoader::SymmetricTransauralDataLoader(std::string const& fileName) {
    header.hrtfType = hrtfBinauralToTransauralShufflerSymmetric;
    header.filterType = hrtfBiquadCells;
    SymmetricTransauralDataLoader::LoadFromFile(fileName);
}

void SymmetricTransauralDataLoader::LoadFromFile(std::string const& fileName) {
    if (CheckFileExtension(fileName, ".coll"))
        LoadFromColl(fileName);
    else if (CheckFileExtension(fileName, ".bin2trans"))
        LoadFromB2T(fileName);
    else
        LoadDefault();
}

void SymmetricTransauralDataLoader::LoadDefault() {
    std::istringstream stream(hrtf_2bt_KEMAR_44100_coll);
    HrtfHeaderInfos newHeader = Header();
    newHeader.owner = "MIT";
    newHeader.copyright = "MIT";
    newHeader.subject = "KEMAR";
    newHeader.originalMeasurementSet = "MIT";
    newHeader.samplingRate = 44100;
    SetPoints(ReadPoints(stream, newHeader));
    header = std::move(newHeader);
}

void SymmetricTransauralDataLoader::LoadFromColl(std::string const& fileName) {
    std::ifstream stream(fileName, std::ios::binary);
    if (!stream) throw orvandsp::OrvanDspException("can't open the file", __FILE__, __LINE__);
    HrtfHeaderInfos newHeader = Header();
    newHeader.owner = "ORVAN";
    newHeader.copyright = "Public";
    newHeader.subject = GetSubjectFromCollFilename(fileName, "");
    newHeader.originalMeasurementSet = "Harken";
    newHeader.flagItdExtracted = itdExtracted;
    newHeader.flagInterpolated = dataInterpolated;
    newHeader.samplingRate = GetSamplingRateFromCollFileName(fileName, 0);
    SetPoints(ReadPoints(stream, newHeader));
    header = std::move(newHeader);
}

void SymmetricTransauralDataLoader::LoadFromColl(std::istream& stream) {
    SetPoints(ReadPoints(stream, header));
}

void SymmetricTransauralDataLoader::LoadFromB2T(std::string const& fileName) {
    LoadFromHRTF(fileName);
}

}  // namespace Lume
