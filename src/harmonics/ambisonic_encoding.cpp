#include "harmonics/ambisonic_encoding.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Lume {

namespace {

/// The largest root of the Legendre polynomial of degree N + 1, for orders N from 1 on.
constexpr double MaxRe3D[] = {0.577350269189626, 0.774596669241483, 0.86113631159405,  0.90617984593866,
                              0.932469514203152, 0.949107912342759, 0.960289856497536, 0.968160239507626,
                              0.973906528517172, 0.978228658146057, 0.981560634246719, 0.984183054718588,
                              0.986283808696812, 0.987992518020485, 0.98940093499165};

std::vector<double> Encode(std::vector<HarmonicIndex> const& indices, std::size_t count, double colatitude,
                           double azimuth, SphericalHarmonicsNormalization normalization) {
    std::vector<double> gains(count, 0.0);
    std::transform(indices.begin(), indices.end(), gains.begin(), [=](HarmonicIndex i) {
        return AmbisonicEncodingComponent(i.degree, i.order, colatitude, azimuth, normalization);
    });
    return gains;
}

/// One weight per channel from one per degree.
template <typename WeightOfDegree>
void FillWeights3D(unsigned int order, std::vector<double>& gains, WeightOfDegree weight) {
    gains.clear();
    for (unsigned int l = 0; l <= order; ++l) gains.insert(gains.end(), std::size_t{2} * l + 1, weight(l));
}

template <typename WeightOfDegree>
void FillWeights2D(unsigned int order, std::vector<double>& gains, WeightOfDegree weight) {
    gains.clear();
    for (unsigned int l = 0; l <= order; ++l) gains.insert(gains.end(), l == 0 ? 1 : 2, weight(l));
}

/// n! in double; the weights are quotients of factorials that leave 32 bits from order 6 on.
double Factorial(unsigned int n) {
    double product = 1.0;
    for (unsigned int k = 2; k <= n; ++k) product *= k;
    return product;
}

}  // namespace

double AmbisonicEncodingComponent(unsigned int degree, int order, double colatitude, double azimuth,
                                  SphericalHarmonicsNormalization normalization) {
    const std::complex<double> harmonic = SphericalHarmonics(degree, order, colatitude, azimuth, normalization);
    if (order >= 0) return harmonic.real();
    // Takes back the sign that the harmonics of negative order carry.
    return order % 2 != 0 ? harmonic.imag() : -harmonic.imag();
}

double AmbisonicEncodingComponent(unsigned int degree, int order, CartesianVector const& position,
                                  SphericalHarmonicsNormalization normalization) {
    const HarmonicAngles angles(position);
    return AmbisonicEncodingComponent(degree, order, angles.colatitude, angles.azimuth, normalization);
}

std::vector<double> AmbisonicEncodingVector(unsigned int order, double colatitude, double azimuth,
                                            SphericalHarmonicsNormalization normalization,
                                            SphericalHarmonicsSorting sorting) {
    return Encode(SortedSphericalHarmonics(order, sorting), std::size_t{order + 1} * (order + 1), colatitude, azimuth,
                  normalization);
}

std::vector<double> AmbisonicEncodingVector(unsigned int order, CartesianVector const& position,
                                            SphericalHarmonicsNormalization normalization,
                                            SphericalHarmonicsSorting sorting) {
    const HarmonicAngles angles(position);
    return AmbisonicEncodingVector(order, angles.colatitude, angles.azimuth, normalization, sorting);
}

std::vector<double> AmbisonicEncodingVector2D(unsigned int order, double colatitude, double azimuth,
                                              SphericalHarmonicsNormalization normalization,
                                              SphericalHarmonicsSorting sorting) {
    return Encode(SortedCylindricalHarmonics(order, sorting), std::size_t{2} * order + 1, colatitude, azimuth,
                  normalization);
}

std::vector<double> AmbisonicEncodingVector2D(unsigned int order, CartesianVector const& position,
                                              SphericalHarmonicsNormalization normalization,
                                              SphericalHarmonicsSorting sorting) {
    const HarmonicAngles angles(position);
    return AmbisonicEncodingVector2D(order, angles.colatitude, angles.azimuth, normalization, sorting);
}

void AmbisonicMaxReOptimizedGains(unsigned int order, std::vector<double>& gains) {
    // Orders beyond the table, which nobody has loudspeakers for, take its last entry.
    const std::size_t index = std::clamp<std::size_t>(order, 1, std::size(MaxRe3D)) - 1;
    FillWeights3D(order, gains, [=](unsigned int l) { return LegendrePolynomials(l, MaxRe3D[index]); });
}

void AmbisonicMaxReOptimizedGains2D(unsigned int order, std::vector<double>& gains) {
    // Pi is the single-precision one.
    FillWeights2D(order, gains, [=](unsigned int l) { return std::cos(l * 3.1415927410125732 / (2.0 * order + 2.0)); });
}

void AmbisonicInPhaseOptimizedGains(unsigned int order, std::vector<double>& gains) {
    FillWeights3D(order, gains, [=](unsigned int l) {
        return Factorial(order) * Factorial(order) * (order + 1.0) / (Factorial(order + l + 1) * Factorial(order - l));
    });
}

void AmbisonicInPhaseOptimizedGains2D(unsigned int order, std::vector<double>& gains) {
    FillWeights2D(order, gains, [=](unsigned int l) {
        return Factorial(order) * Factorial(order) / (Factorial(order + l) * Factorial(order - l));
    });
}

}  // namespace Lume
