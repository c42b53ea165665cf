#pragma once

#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "support/sdif_writer.h"

/// What a file of filters is made from.
struct SetDescription {
    char const* dataType = "Binaural";
    char const* filterType = "BiquadCells";
    std::uint32_t numCoefficients = 1;  // of one ear
    std::uint32_t numChannels = 2;
    std::vector<Lume::CartesianVector> positions;
    std::vector<double> itds;             // [ms], one per point, or none: all 0
    std::uint32_t positionsPerPoint = 1;  // 2 for pairs of loudspeakers
};

/// The bytes of an SDIF file of filters by direction.
/// @param coefficient  (point, place in the point's numChannels x numCoefficients values) -> value
template <typename Coefficient>
std::string SetFile(SetDescription const& set, Coefficient&& coefficient) {
    const auto numPoints = static_cast<std::uint32_t>(set.positions.size() / set.positionsPerPoint);
    SdifWriter writer;
    writer.TextFrame(
        "1NVT", std::string("TableName\tHrtfInfos\nOwner\to\nAuthor\ta\nSubject\ts\nCopyright\tc\n") + "DataType\t" +
                    set.dataType + "\nFiltersType\t" + set.filterType +
                    "\nITDExtracted\t1\nSpatialInterpolation\t0\nMeasurementSet\tm\nInterpolationSet\ti\n" +
                    "FiltersLength\t" + std::to_string(set.numCoefficients) + "\nNumChannels\t" +
                    std::to_string(set.numChannels) + "\nSamplingRate\t44100\nNumPoints\t" + std::to_string(numPoints) +
                    "\nGenerated\tnow\n");
    const bool isFir = std::string(set.filterType) == "FIR";
    for (std::uint32_t i = 0; i < numPoints; ++i) {
        SdifMatrix positions{"XPOS", 8, set.positionsPerPoint, 3, {}};
        for (std::uint32_t j = 0; j < set.positionsPerPoint; ++j) {
            Lume::CartesianVector const& p = set.positions[i * set.positionsPerPoint + j];
            for (const float x : {p.x, p.y, p.z}) positions.values.push_back(static_cast<double>(x));
        }
        SdifMatrix filters{isFir ? "XFIR" : "XIIR", 4, set.numChannels, set.numCoefficients, {}};
        for (std::uint32_t place = 0; place < set.numChannels * set.numCoefficients; ++place)
            filters.values.push_back(static_cast<double>(coefficient(i, place)));
        std::vector<SdifMatrix> matrices = {positions, filters};
        if (!isFir) matrices.push_back({"XITD", 8, 1, 1, {set.itds.empty() ? 0.0 : set.itds[i]}});
        writer.Frame("HRTF", i + 1, matrices);
    }
    return writer.bytes;
}

/// A file of one direction, ahead, whose filters are a gain.
inline std::string FlatSetFile(float gain = 0.5f, std::uint32_t numChannels = 2) {
    SetDescription set;
    set.numChannels = numChannels;
    set.positions = {{0.0f, 1.0f, 0.0f}};
    return SetFile(set, [=](std::uint32_t, std::uint32_t) { return gain; });
}
