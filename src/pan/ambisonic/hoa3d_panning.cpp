#include "pan/ambisonic/hoa3d_panning.h"

#include <algorithm>
#include <cmath>

#include "harmonics/spherical_harmonics.h"
#include "pan/null_panning.h"

namespace Lume {

namespace {

float OrderOf(unsigned int numOutputs) {
    return std::sqrt(static_cast<float>(numOutputs)) - 1.0f;
}

}  // namespace

HOA3DPanning::HOA3DPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : HOAPanning(numberOfInputs, numberOfOutputs, static_cast<unsigned int>(OrderOf(std::max(numberOfOutputs, 1u))),
                 SN3D, SortedSphericalHarmonics) {}

Pan* HOA3DPanning::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    const float order = OrderOf(numberOfOutputs);
    if (!(order >= 1.0f) || order != std::trunc(order)) return new NullPanning;
    return new HOA3DPanning(numberOfInputs, numberOfOutputs);
}

void HOA3DPanning::SetEncodingConvention(HOAEncodingConvention convention) {
    infos.encodingConvention = convention == N3D ? N3D : SN3D;
    forceUpdate(false);
}

void HOA3DPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    const auto normalization = infos.encodingConvention == N3D ? FullyNormalized3D : SchmidtSeminormalized3D;
    Encode(position, normalization, gains);
}

}  // namespace Lume
