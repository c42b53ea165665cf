#pragma once

#include <complex>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "geometry/spherical_harmonics_normalization.h"

namespace Lume {

/// Legendre functions and spherical harmonics of any degree l and order m, -l <= m <= l, in double precision.
///
/// Angles: the azimuth is the mathematical one, 0 on +x (the listener's right) and counter-clockwise; the colatitude is
/// 0 on +z. None of these functions is meant for the audio thread.

/// "Unnormalized" and so on; empty for any other value. The name lacks a letter (kept: quirks.md 32).
char const* GetSphericalHarmonicsNormalizatioName(SphericalHarmonicsNormalization normalization);

/// "SN3D", "N3D", "SN2D", "N2D" for the values 0, 1, 4 and 5 that encoders and decoders have; empty for any other.
char const* GetAmbisonicConventionName(int convention);

/// The order of the channels of a set of harmonics.
enum SphericalHarmonicsSorting : int {
    IncreasingDegrees = 0,  ///< (0, 0), (1, -1), (1, 0), (1, 1), (2, -2), ... as in "ACN"
    AlternateDegrees = 1    ///< (0, 0), (1, 1), (1, -1), (1, 0), (2, 2), (2, -2), (2, 1), ...
};

/// "IncreasingDegrees" or "AlternateDegrees"; empty for any other value.
char const* GetSphericalHarmonicsSortingName(SphericalHarmonicsSorting sorting);
/// Those names, also in small letters; IncreasingDegrees for an unknown one.
SphericalHarmonicsSorting GetSphericalHarmonicsSorting(char const* name);

/// The angles of a position [rad]; the azimuth is 0 at the origin, and the colatitude there is that of the horizon.
struct HarmonicAngles {
    /// In single precision, as positions are.
    explicit HarmonicAngles(CartesianVector const& position);

    double colatitude;
    double azimuth;
};

/// Degree and order of one channel.
struct HarmonicIndex {
    unsigned int degree;
    int order;
};

/// The number of channels up to an order, of a sphere or a circle.
constexpr unsigned int NumAmbisonicChannels(unsigned int order, bool inSpace) {
    return inSpace ? (order + 1) * (order + 1) : 2 * order + 1;
}

/// Which harmonic each channel of a set holds: all up to a degree, (maxDegree + 1)^2 of them. Empty for an unknown
/// sorting.
std::vector<HarmonicIndex> SortedSphericalHarmonics(unsigned int maxDegree, SphericalHarmonicsSorting sorting);
/// Those with |m| = l alone, 2 maxDegree + 1 of them.
std::vector<HarmonicIndex> SortedCylindricalHarmonics(unsigned int maxDegree, SphericalHarmonicsSorting sorting);

/// The Legendre polynomial of a degree, by its three-term recurrence.
double LegendrePolynomials(unsigned int degree, double x);

/// The associated Legendre function, computed fully normalised (which neither over- nor underflows), rising in degree
/// from the diagonal, and scaled at the end (Holmes and Featherstone, "A unified approach to the Clenshaw summation and
/// the recursive computation of very high degree and order normalised associated Legendre functions", J. Geodesy 76,
/// 2002).
///
/// The 2D values scale as Unnormalized does, and GaussNormalization as FullyNormalized3D without a sign. 0 for
/// |order| > degree.
/// @param x  the cosine of the colatitude, -1 to 1
double AssociatedLegendreFunctions(unsigned int degree, int order, double x,
                                   SphericalHarmonicsNormalization normalization);

/// The complex spherical harmonic V exp(j |m| azimuth), and for negative m (-1)^m times its conjugate. 0 for
/// |order| > degree.
std::complex<double> SphericalHarmonics(unsigned int degree, int order, double colatitude, double azimuth,
                                        SphericalHarmonicsNormalization normalization);

/// The complex harmonics at a position, (maxDegree + 1)^2 of them; all 0 for an unknown sorting.
std::vector<std::complex<double>> SphericalHarmonicsBasis(unsigned int maxDegree, CartesianVector const& position,
                                                          SphericalHarmonicsNormalization normalization,
                                                          SphericalHarmonicsSorting sorting);
/// Those with |m| = l alone, 2 maxDegree + 1 of them.
std::vector<std::complex<double>> CylindricalHarmonicsBasis(unsigned int maxDegree, CartesianVector const& position,
                                                            SphericalHarmonicsNormalization normalization,
                                                            SphericalHarmonicsSorting sorting);

}  // namespace Lume
