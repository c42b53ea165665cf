#include "hrtf/spherical_harmonic_data.h"

namespace Lume {

std::complex<float> SphericalHarmonicData::GetData(int order, int degree, unsigned int bin, unsigned int ear) const {
    const auto row = static_cast<std::size_t>((order + 1) * (order + 1) - (order - degree) - 1);
    if (ear != 1 && ear != 2) return 0.0f;
    orvandsp::MatrixComplex const& basis = ear == 1 ? left : right;
    // A set without data is the rule as long as there is no file to load one from.
    return row < basis.GetNumRows() && bin < basis.GetNumColumns() ? basis[row][bin] : 0.0f;
}

}  // namespace Lume
