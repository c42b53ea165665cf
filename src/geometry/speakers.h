#pragma once

#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Built-in loudspeaker layouts: unit circles in the horizontal plane, and a cube. The order of a table is that of the
/// output channels; the angles below are listener's azimuths in degrees (geometry/azimuth.h).
///
/// The tables are filled before the program's other static objects are built, and never change.
class Speakers {
public:
    static CartesianVector const mono[1];         // 0
    static CartesianVector const stereo[2];       // -30, 30
    static CartesianVector const lrs[3];          // -30, 30, 180
    static CartesianVector const lcrs[4];         // -30, 0, 30, 180
    static CartesianVector const quadri[4];       // -45, 45, 135, -135
    static CartesianVector const fiveDotOne[5];   // -30, 0, 30, 110, -110
    static CartesianVector const hexa[6];         // -45, 45, 90, 135, -135, -90
    static CartesianVector const sevenDotOne[7];  // -30, 0, 30, 90, 150, -150, -90
    static CartesianVector const octo[8];         // -45, 0, 45, 90, 135, 180, -135, -90
    static CartesianVector const cube[8];         // corners at +-1, upper four first

    /// The table for 1 to 8 loudspeakers, null for other numbers. lcrs and cube are chosen by hand only.
    static CartesianVector const* getDefaultForChannels(unsigned int n);

    /// Fills a vector with the layout for n loudspeakers: the table where there is one, otherwise a regular ring.
    static void GetDefaultForChannels(std::vector<CartesianVector>& positions, unsigned int n);

    /// Writes a regular ring of radius 1: entry 0 straight ahead, the others clockwise seen from above.
    /// @param positions  room for n triples x, y, z
    static void GetRegularlySpaced(float* positions, unsigned int n);

    /// The same into a vector, which becomes n long.
    static void GetRegularlySpaced(std::vector<CartesianVector>& positions, unsigned int n);
};

}  // namespace Lume
