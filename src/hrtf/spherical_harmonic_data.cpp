#include "hrtf/spherical_harmonic_data.h"

namespace Lume {

std::complex<float> SphericalHarmonicData::GetData(int order, int degree, unsigned int bin, unsigned int ear) const {
    const auto row = static_cast<std::size_t>((order + 1) * (order + 1) - (order - degree) - 1);
    if (ear == 1) return left[row][bin];
    if (ear == 2) return right[row][bin];
    return 0.0f;
}

}  // namespace Lume
