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
    std::vector<double> itds;  // [ms], one per position, or none: all 0
};

/// The bytes of an SDIF file of filters by direction.
/// @param coefficient  (point, place in the point's numChannels x numCoefficients values) -> value
template <typename Coefficient>
std::string SetFile(SetDescription const& set, Coefficient&& coefficient) {
    SdifWriter writer;
    writer.TextFrame(
        "1NVT", std::string("TableName\tHrtfInfos\nOwner\to\nAuthor\ta\nSubject\ts\nCopyright\tc\n") + "DataType\t" +
                    set.dataType + "\nFiltersType\t" + set.filterType +
                    "\nITDExtracted\t1\nSpatialInterpolation\t0\nMeasurementSet\tm\nInterpolationSet\ti\n" +
                    "FiltersLength\t" + std::to_string(set.numCoefficients) + "\nNumChannels\t" +
                    std::to_string(set.numChannels) + "\nSamplingRate\t44100\nNumPoints\t" +
                    std::to_string(set.positions.size()) + "\nGenerated\tnow\n");
    const bool isFir = std::string(set.filterType) == "FIR";
    for (std::uint32_t i = 0; i < set.positions.size(); ++i) {
        Lume::CartesianVector const& p = set.positions[i];
        SdifMatrix filters{isFir ? "XFIR" : "XIIR", 4, set.numChannels, set.numCoefficients, {}};
        for (std::uint32_t place = 0; place < set.numChannels * set.numCoefficients; ++place)
            filters.values.push_back(static_cast<double>(coefficient(i, place)));
        std::vector<SdifMatrix> matrices = {
            {"XPOS", 8, 1, 3, {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)}}, filters};
        if (!isFir) matrices.push_back({"XITD", 8, 1, 1, {set.itds.empty() ? 0.0 : set.itds[i]}});
        writer.Frame("HRTF", i + 1, matrices);
    }
    return writer.bytes;
}
