#include "harmonics/spherical_harmonics.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace Lume {

namespace {

bool IsOdd(unsigned int number) {
    return number % 2 != 0;
}

/// (l + a)! / (l - a)!. In double: in 32-bit integers it would overflow from degree 6 on.
double FactorialQuotient(unsigned int l, unsigned int a) {
    double product = 1.0;
    for (unsigned int k = l - a + 1; k <= l + a; ++k) product *= k;
    return product;
}

/// The fully normalised function for an order a from 0 to l.
double FullyNormalized(unsigned int l, unsigned int a, double x) {
    if (a == 0) return LegendrePolynomials(l, x) * std::sqrt(2.0 * l + 1.0);

    const double s = std::sin(std::acos(x));
    double diagonal = s * 1.7320508075688772;
    for (unsigned int i = 2; i <= a; ++i) diagonal = diagonal * std::sqrt((2.0 * i + 1.0) / (2.0 * i)) * s;

    const double m = a;
    double before = 0.0, current = diagonal;
    for (unsigned int degree = a + 1; degree <= l; ++degree) {
        const double k = degree;
        const double rise = std::sqrt((2.0 * k - 1.0) * (2.0 * k + 1.0) / ((k - m) * (k + m)));
        // 0 for the first step from the diagonal.
        const double fall =
            std::sqrt((2.0 * k + 1.0) * (k - m - 1.0) * (k + m - 1.0) / ((2.0 * k - 3.0) * (k - m) * (k + m)));
        const double next = x * rise * current - fall * before;
        before = current;
        current = next;
    }
    return current;
}

/// sqrt(2^(2 a - 1) a! a! / (2 a)!): what turns a semi-normalised harmonic of degree a into one of magnitude sin^a.
/// Deliberately sqrt(0.5) for a = 0: the 2D conventions lower the omnidirectional channel by that.
double CircularScale(unsigned int a) {
    double factorial = 1.0, factorialOfTwice = 1.0;
    for (unsigned int k = 2; k <= a; ++k) factorial *= k;
    for (unsigned int k = 2; k <= 2 * a; ++k) factorialOfTwice *= k;
    return std::sqrt(std::ldexp(0.5, static_cast<int>(2 * a)) * factorial * factorial / factorialOfTwice);
}

double Magnitude(unsigned int l, unsigned int a, double x, SphericalHarmonicsNormalization normalization) {
    const auto semiNormalized = [=] {
        return AssociatedLegendreFunctions(l, static_cast<int>(a), x, SchmidtSeminormalized3D);
    };
    switch (normalization) {
        case Unnormalized:
            // The constant is 1 / (4 pi).
            return AssociatedLegendreFunctions(l, static_cast<int>(a), x, Unnormalized) *
                   std::sqrt((2.0 * l + 1.0) * 0.07957746933150284 / FactorialQuotient(l, a));
        case SchmidtSeminormalized2D:
            return semiNormalized() * CircularScale(a);
        case FullyNormalized3D:
            return semiNormalized() * std::sqrt(2.0 * l + 1.0);
        case FullyNormalized2D:
            return semiNormalized() * (a == 0 ? CircularScale(0) : std::sqrt(2.0) * CircularScale(a));
        case GaussNormalization:
            return 1.0;
        default:
            return semiNormalized();
    }
}

std::vector<std::complex<double>> Basis(std::vector<HarmonicIndex> const& indices, std::size_t count,
                                        CartesianVector const& position,
                                        SphericalHarmonicsNormalization normalization) {
    const HarmonicAngles angles(position);
    std::vector<std::complex<double>> basis(count, 0.0);
    std::transform(indices.begin(), indices.end(), basis.begin(), [&](HarmonicIndex i) {
        return SphericalHarmonics(i.degree, i.order, angles.colatitude, angles.azimuth, normalization);
    });
    return basis;
}

}  // namespace

char const* GetAmbisonicConventionName(int convention) {
    switch (convention) {
        case 0:
            return "SN3D";
        case 1:
            return "N3D";
        case 4:
            return "SN2D";
        case 5:
            return "N2D";
        default:
            return "";
    }
}

char const* GetSphericalHarmonicsSortingName(SphericalHarmonicsSorting sorting) {
    switch (sorting) {
        case IncreasingDegrees:
            return "IncreasingDegrees";
        case AlternateDegrees:
            return "AlternateDegrees";
    }
    return "";
}

SphericalHarmonicsSorting GetSphericalHarmonicsSorting(char const* name) {
    const std::string_view text = name;
    return text == "AlternateDegrees" || text == "alternatedegrees" ? AlternateDegrees : IncreasingDegrees;
}

char const* GetSphericalHarmonicsNormalizatioName(SphericalHarmonicsNormalization normalization) {
    static constexpr char const* names[] = {"Unnormalized",      "SchmidtSeminormalized3D", "SchmidtSeminormalized2D",
                                            "FullyNormalized3D", "FullyNormalized2D",       "GaussNormalization"};
    const auto index = static_cast<unsigned int>(normalization);
    return index < std::size(names) ? names[index] : "";
}

HarmonicAngles::HarmonicAngles(CartesianVector const& position) {
    const float r = position.radius();
    // Kept within the sine's range: the radius of a tiny vector is no longer exact.
    const float elevation = r > 0.0f ? std::asin(std::clamp(position.z / r, -1.0f, 1.0f)) : 0.0f;
    colatitude = static_cast<double>(1.5707964f - elevation);
    azimuth = static_cast<double>(std::atan2(position.y, position.x));
}

std::vector<HarmonicIndex> SortedSphericalHarmonics(unsigned int maxDegree, SphericalHarmonicsSorting sorting) {
    std::vector<HarmonicIndex> indices;
    if (sorting != IncreasingDegrees && sorting != AlternateDegrees) return indices;
    indices.reserve(std::size_t{maxDegree + 1} * (maxDegree + 1));
    for (unsigned int l = 0; l <= maxDegree; ++l) {
        const auto last = static_cast<int>(l);
        if (sorting == IncreasingDegrees) {
            for (int m = -last; m <= last; ++m) indices.push_back({l, m});
        } else {
            for (int m = last; m > 0; --m) {
                indices.push_back({l, m});
                indices.push_back({l, -m});
            }
            indices.push_back({l, 0});
        }
    }
    return indices;
}

std::vector<HarmonicIndex> SortedCylindricalHarmonics(unsigned int maxDegree, SphericalHarmonicsSorting sorting) {
    std::vector<HarmonicIndex> indices;
    if (sorting != IncreasingDegrees && sorting != AlternateDegrees) return indices;
    indices.push_back({0, 0});
    const int firstSign = sorting == IncreasingDegrees ? -1 : 1;
    for (unsigned int l = 1; l <= maxDegree; ++l) {
        indices.push_back({l, firstSign * static_cast<int>(l)});
        indices.push_back({l, -firstSign * static_cast<int>(l)});
    }
    return indices;
}

double LegendrePolynomials(unsigned int degree, double x) {
    if (x == 1.0) return 1.0;
    if (x == -1.0) return IsOdd(degree) ? -1.0 : 1.0;
    if (degree == 0) return 1.0;
    double before = 1.0, current = x;
    for (unsigned int k = 2; k <= degree; ++k) {
        const double next = ((2.0 * k - 1.0) * x * current - (k - 1.0) * before) / k;
        before = current;
        current = next;
    }
    return current;
}

double AssociatedLegendreFunctions(unsigned int degree, int order, double x,
                                   SphericalHarmonicsNormalization normalization) {
    const auto a = static_cast<unsigned int>(std::abs(order));
    if (a > degree) return 0.0;
    const double f = FullyNormalized(degree, a, x);
    const double signOfNegative = order < 0 && IsOdd(a) ? -1.0 : 1.0;
    switch (normalization) {
        case FullyNormalized3D:
            return signOfNegative * f;
        case GaussNormalization:
            return f;
        case SchmidtSeminormalized3D:
            return signOfNegative * f / std::sqrt(2.0 * degree + 1.0);
        default:
            break;
    }
    if (order == 0) return f / std::sqrt(2.0 * degree + 1.0);
    // The phase of Condon and Shortley stands on the positive orders.
    const double phase = order > 0 && IsOdd(a) ? -1.0 : 1.0;
    return phase * f / std::sqrt(2.0 * (2.0 * degree + 1.0) / FactorialQuotient(degree, a));
}

std::complex<double> SphericalHarmonics(unsigned int degree, int order, double colatitude, double azimuth,
                                        SphericalHarmonicsNormalization normalization) {
    const auto a = static_cast<unsigned int>(std::abs(order));
    if (a > degree) return 0.0;
    const double magnitude = Magnitude(degree, a, std::cos(colatitude), normalization);
    const double real = std::cos(a * azimuth) * magnitude;
    const double imaginary = std::sin(a * azimuth) * magnitude;
    if (order >= 0) return {real, imaginary};
    return IsOdd(a) ? std::complex<double>(-real, imaginary) : std::complex<double>(real, -imaginary);
}

std::vector<std::complex<double>> SphericalHarmonicsBasis(unsigned int maxDegree, CartesianVector const& position,
                                                          SphericalHarmonicsNormalization normalization,
                                                          SphericalHarmonicsSorting sorting) {
    return Basis(SortedSphericalHarmonics(maxDegree, sorting), std::size_t{maxDegree + 1} * (maxDegree + 1), position,
                 normalization);
}

std::vector<std::complex<double>> CylindricalHarmonicsBasis(unsigned int maxDegree, CartesianVector const& position,
                                                            SphericalHarmonicsNormalization normalization,
                                                            SphericalHarmonicsSorting sorting) {
    return Basis(SortedCylindricalHarmonics(maxDegree, sorting), std::size_t{2} * maxDegree + 1, position,
                 normalization);
}

}  // namespace Lume
