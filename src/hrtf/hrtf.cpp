#include "hrtf/hrtf.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "dsp/orvan_dsp_exception.h"
#include "geometry/azimuth.h"
#include "geometry/azimuth_distance_elevation.h"
#include "hrtf/builtin_sets.h"
#include "hrtf/coll_file.h"
#include "hrtf/max_msp_coll_file_parser.h"

namespace Lume {

namespace {

constexpr unsigned int numEars = 2;

/// Makes a point of each direction of a grid. The rows hold one ear: the other one takes the row of the mirrored
/// azimuth, and the delay between them is the difference of the rows' delays.
/// @param row  gives the values of a row, counted from 0
template <typename Row>
std::vector<HrtfPoint> PointsOnGrid(HrtfInfo const& info, Row&& row) {
    const unsigned int numCoefficients = info.coefficientsPerRow - 1;
    std::vector<HrtfPoint> points;
    points.reserve(info.GetNumRows());
    for (unsigned int i = 0; i < info.numElevations; ++i)
        for (unsigned int j = 0; j < info.az[i]; ++j) {
            float azimuth = static_cast<float>(j) * -360.0f / static_cast<float>(info.az[i]);
            auto elevation = static_cast<float>(static_cast<int>(i) * info.elevationStep + info.lowestElevation);
            FoldElevation(azimuth, elevation);
            azimuth = Wrap(azimuth + 180.0f, 360.0f) - 180.0f;

            const unsigned int index = info.offsets[i] + j;
            float const* const left = row(index);
            float const* const right = row(info.offsets[i] + (info.az[i] - j) % info.az[i]);
            HrtfPoint point;
            point.position = FromAzimuthDistanceElevation(azimuth, 1.0f, elevation);
            point.itd = left[0] - right[0];
            point.numCoefficients = numCoefficients;
            point.numChannels = numEars;
            point.coefficients.assign(left + 1, left + 1 + numCoefficients);
            point.coefficients.insert(point.coefficients.end(), right + 1, right + 1 + numCoefficients);
            point.index = index;
            points.push_back(std::move(point));
        }
    return points;
}

}  // namespace

Hrtf::Hrtf(std::string const& fileName) {
    Hrtf::LoadFromFile(fileName);
}

void Hrtf::LoadFromFile(std::string const& fileName) {
    if (CheckFileExtension(fileName, ".coll"))
        LoadFromColl(fileName, HrtfInfoBinauralBiquadFullSphere());
    else if (CheckFileExtension(fileName, ".hrtf"))
        LoadFromHRTF(fileName);
    else
        LoadDefault();
}

void Hrtf::LoadDefault() {
    Load(builtinSets.front());
}

Hrtf Hrtf::Builtin(float samplerate) {
    if (!(samplerate > 0.0f)) return Hrtf(builtinSets.front());
    const auto distance = [=](BuiltinSet const& set) {
        return std::abs(std::log2(samplerate / static_cast<float>(set.samplerate)));
    };
    return Hrtf(*std::min_element(builtinSets.begin(), builtinSets.end(),
                                  [&](BuiltinSet const& a, BuiltinSet const& b) { return distance(a) < distance(b); }));
}

Hrtf::Hrtf(BuiltinSet const& builtin) {
    Load(builtin);
}

void Hrtf::Load(BuiltinSet const& builtin) {
    const HrtfInfoBinauralBiquadFullSphere info;
    SetPoints(PointsOnGrid(info, [&](unsigned int index) { return builtin.rows[index]; }));
    header = HrtfHeaderInfos();
    header.owner = "MIT";
    header.copyright = "MIT";
    header.subject = "KEMAR";
    header.originalMeasurementSet = "unknown";
    header.interpolationSet = "none";
    header.numCoefficients = info.coefficientsPerRow - 1;
    header.numChannels = numEars;
    header.samplingRate = builtin.samplerate;
    header.numPoints = info.GetNumRows();
}

void Hrtf::LoadFromColl(std::string const& fileName, HrtfInfo const& info) try {
    const auto parser = MaxMSPCollFileParser::OfFile(fileName);

    HrtfHeaderInfos newHeader;
    newHeader.owner = "ORVAN";
    newHeader.copyright = "Public";
    newHeader.subject = GetSubjectFromCollFilename(fileName, "");
    newHeader.originalMeasurementSet = "Harken";
    newHeader.interpolationSet = "unknown";
    newHeader.flagItdExtracted = itdExtracted;
    newHeader.flagInterpolated = dataInterpolated;
    newHeader.numCoefficients = info.coefficientsPerRow - 1;
    newHeader.numChannels = numEars;
    newHeader.samplingRate = GetSamplingRateFromCollFileName(fileName, 0);
    newHeader.numPoints = info.GetNumRows();

    if (parser.numValuesPerRow != newHeader.numCoefficients + 1 || !parser.HasEqualRows())
        throw orvandsp::OrvanDspException("the number of coefficients doesn't match", __FILE__, __LINE__);
    if (parser.numRows != newHeader.numPoints)
        throw orvandsp::OrvanDspException("not enough measures", __FILE__, __LINE__);

    std::vector<HrtfPoint> newPoints =
        PointsOnGrid(info, [&](unsigned int index) { return parser.rows.at(static_cast<int>(index) + 1).data(); });
    if (!std::all_of(newPoints.begin(), newPoints.end(),
                     [](auto const& point) { return IsInterauralDelay(point.itd); }))
        throw orvandsp::OrvanDspException("a delay is longer than any between two ears", __FILE__, __LINE__);
    SetPoints(std::move(newPoints));
    header = std::move(newHeader);
} catch (orvandsp::OrvanDspException const&) {
    throw;
} catch (std::exception const& failure) {
    throw orvandsp::OrvanDspException(failure.what(), __FILE__, __LINE__);
} catch (...) {
    throw orvandsp::OrvanDspException("unknown exception while loading coll file " + fileName, __FILE__, __LINE__);
}

}  // namespace Lume
