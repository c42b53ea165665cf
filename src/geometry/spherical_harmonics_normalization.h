#pragma once

namespace Lume {

/// How a set of harmonics is scaled. With P the associated Legendre function without the Condon-Shortley phase, and
/// d = 1 for m = 0 and 2 otherwise:
enum SphericalHarmonicsNormalization : int {
    Unnormalized = 0,             ///< P, with the Condon-Shortley phase; orthonormal harmonics from SphericalHarmonics
    SchmidtSeminormalized3D = 1,  ///< sqrt(d (l - |m|)! / (l + |m|)!) P: "SN3D"
    SchmidtSeminormalized2D = 2,  ///< harmonics of |m| = l have magnitude sin^l: "SN2D"; the one of degree 0 sqrt(0.5)
    FullyNormalized3D = 3,        ///< sqrt(2 l + 1) times SN3D: mean square 1 over the sphere: "N3D"
    FullyNormalized2D = 4,        ///< sqrt(2) times SN2D: mean square 1 over the circle: "N2D"; degree 0 as in SN2D
    GaussNormalization = 5        ///< magnitude 1 for every harmonic
};

}  // namespace Lume
