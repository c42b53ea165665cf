#pragma once

#include <vector>

#include "geometry/spherical_harmonics_normalization.h"
#include "harmonics/spherical_harmonics.h"

namespace Lume {

/// What a channel of an ambisonic file holds.
struct AmbisonicChannel {
    unsigned int acn;  ///< number of the harmonic in the order of ACN: degree (degree + 1) + order
    float toSn3d;      ///< brings the channel to SN3D
};

/// The channels of a file up to an order, whose weights are SN3D or N3D.
std::vector<AmbisonicChannel> AmbisonicChannels(unsigned int order, SphericalHarmonicsNormalization normalization,
                                                SphericalHarmonicsSorting sorting);

/// The channels W X Y Z, R S T U V, K L M N O P Q of older files, each with the largest gain 1 but W, which has
/// sqrt(1/2) (Malham, "Higher order ambisonic systems", University of York, 2003). Axes are those of AmbiX.
/// @param order  1 to 3; empty for others
std::vector<AmbisonicChannel> FumaChannels(unsigned int order);

}  // namespace Lume
