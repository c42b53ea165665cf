#pragma once

#include <vector>

#include "geometry/orientation.h"

namespace Lume {

/// The matrices that rotate a sound field in ambisonic channels, one per degree: degree l has 2 l + 1 rows and columns,
/// row by row, from the order -l to l. The same for SN3D and N3D. What a plane wave from a direction becomes is the
/// encoding of the rotated direction.
///
/// By recursion over the degree (Ivanic and Ruedenberg, "Rotation matrices for real spherical harmonics. Direct
/// determination by recursion", J. Phys. Chem. 100, 1996, and the correction in 102, 1998).
/// @param rotation  in the axes of the channels
std::vector<std::vector<double>> HarmonicsRotation(unsigned int order, RotationMatrix const& rotation);

}  // namespace Lume
