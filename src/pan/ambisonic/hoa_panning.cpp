#include "pan/ambisonic/hoa_panning.h"

#include <algorithm>
#include <map>
#include <string>

namespace Lume {

void HOAPanning::SetEncodingConvention(char const* name) {
    SetEncodingConvention(GetHOAPannerConvention(name));
}

void HOAPanning::SetSphericalHarmonicsSorting(SphericalHarmonicsSorting sorting) {
    infos.sorting = sorting;
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
                       HOAEncodingConvention convention)
    : AmplitudePanning(numberOfInputs, numberOfOutputs), infos{order, convention, IncreasingDegrees} {}

void HOAPanning::StoreGains(std::vector<double> const& encoding, float* gains) const {
    // The number of outputs may have been lowered since the order was computed from it.
    const std::size_t count = std::min<std::size_t>(encoding.size(), numOutputs);
    for (std::size_t i = 0; i < count; ++i) gains[i] = static_cast<float>(encoding[i]);
}

}  // namespace Lume
