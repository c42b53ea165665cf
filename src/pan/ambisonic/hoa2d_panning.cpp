#include "pan/ambisonic/hoa2d_panning.h"

#include <algorithm>

#include "harmonics/spherical_harmonics.h"

namespace Lume {

HOA2DPanning::HOA2DPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : HOAPanning(numberOfInputs, numberOfOutputs, (std::max(numberOfOutputs, 1u) - 1) / 2, SN2D,
                 SortedCylindricalHarmonics) {}

void HOA2DPanning::SetEncodingConvention(HOAEncodingConvention convention) {
    infos.encodingConvention = convention == N2D ? N2D : SN2D;
    forceUpdate(false);
}

void HOA2DPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    const auto normalization = infos.encodingConvention == N2D ? FullyNormalized2D : SchmidtSeminormalized2D;
    Encode(position, normalization, gains);
}

}  // namespace Lume
