#pragma once

#include <vector>

namespace Lume {

/// A grid of measurements over the whole sphere: rings of equal elevation, each with its own number of azimuths.
///
/// Row offsets[i] + j holds one ear's measurement at elevation lowestElevation + i * elevationStep and at j steps of
/// 360 / az[i] degrees counter-clockwise from straight ahead.
struct HrtfInfo {
    virtual ~HrtfInfo() = default;

    int lowestElevation = 0;   // [degrees]
    int highestElevation = 0;  // [degrees]
    int elevationStep = 0;     // [degrees]
    unsigned int numElevations = 0;
    int lowestAzimuth = 0;                // [degrees]
    int highestAzimuth = 0;               // [degrees]
    unsigned int coefficientsPerRow = 0;  // values, the delay included
    std::vector<unsigned int> az;         // azimuths per ring
    std::vector<unsigned int> offsets;    // first row of each ring

    /// Rows of the whole grid.
    unsigned int GetNumRows() const { return offsets.empty() ? 0 : offsets.back() + az.back(); }
};

/// The grid of the built-in set: 710 directions from 40 degrees below the horizontal plane up to the zenith.
struct HrtfInfoBinauralBiquadFullSphere : HrtfInfo {
    HrtfInfoBinauralBiquadFullSphere();
};

}  // namespace Lume
