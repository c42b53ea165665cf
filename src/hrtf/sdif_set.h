#pragma once

#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "hrtf/hrtf_header_infos.h"

namespace Lume {

/// One frame of a set, as an SDIF file holds it.
struct SdifSetPoint {
    std::vector<CartesianVector> positions;  // empty if the frame has none
    float itd = 0.0f;
    std::vector<float> coefficients;  // channels x coefficients, 0 if the frame has none
};

/// A set, as an SDIF file holds it.
struct SdifSet {
    HrtfHeaderInfos header;
    std::vector<SdifSetPoint> points;
};

/// Reads an SDIF file of one HRTF frame per point, in any order. Frames of other types and matrices that aren't known
/// are skipped.
/// @param numPositions  positions that a position matrix must hold: 1 for directions, 2 for pairs of loudspeakers
/// @throws orvandsp::OrvanDspException if anything is wrong with the file
SdifSet ReadSdifSet(std::string const& fileName, unsigned int numPositions);

}  // namespace Lume
