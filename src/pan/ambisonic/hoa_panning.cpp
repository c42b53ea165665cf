#include "pan/ambisonic/hoa_panning.h"

#include <map>
#include <string>

#include "harmonics/ambisonic_encoding.h"

namespace Lume {

void HOAPanning::SetSphericalHarmonicsSorting(SphericalHarmonicsSorting sorting) {
    infos.sorting = sorting;
    channels = harmonics(infos.order, sorting);
    forceUpdate(false);
}

void HOAPanning::SetSphericalHarmonicsSorting(char const* name) {
    SetSphericalHarmonicsSorting(GetSphericalHarmonicsSorting(name));
}

HOAPanning::HOAEncodingConvention HOAPanning::GetHOAPannerConvention(char const* name) {
    static const std::map<std::string, HOAEncodingConvention> conventions = {
        {"SemiNormalization3D", SN3D}, {"seminormalized3d", SN3D}, {"SN3D", SN3D}, {"sn3d", SN3D}, {"SN3d", SN3D},
        {"FullNormalization3D", N3D},  {"fullnormalized3d", N3D},  {"N3D", N3D},   {"n3d", N3D},   {"N3d", N3D},
        {"SemiNormalization2D", SN2D}, {"seminormalized2d", SN2D}, {"SN2D", SN2D}, {"sn2d", SN2D}, {"SN2d", SN2D},
        {"FullNormalization2D", N2D},  {"fullnormalized2d", N2D},  {"N2D", N2D},   {"n2d", N2D},   {"N2d", N2D},
    };
    const auto found = conventions.find(name);
    return found == conventions.end() ? SN3D : found->second;
}

HOAPanning::HOAPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs, unsigned int order,
                       HOAEncodingConvention convention,
                       std::vector<HarmonicIndex> (*newHarmonics)(unsigned int, SphericalHarmonicsSorting))
    : AmplitudePanning(numberOfInputs, numberOfOutputs),
      infos{order, convention, IncreasingDegrees},
      harmonics(newHarmonics),
      channels(harmonics(order, IncreasingDegrees)) {}

void HOAPanning::Encode(CartesianVector const& position, SphericalHarmonicsNormalization normalization,
                        float* gains) const {
    const HarmonicAngles angles(position);
    for (unsigned int i = 0; i < numOutputs; ++i)
        gains[i] = i < channels.size()
                       ? static_cast<float>(AmbisonicEncodingComponent(
                             channels[i].degree, channels[i].order, angles.colatitude, angles.azimuth, normalization))
                       : 0.0f;
}

}  // namespace Lume
