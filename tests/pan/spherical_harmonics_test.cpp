#include "harmonics/spherical_harmonics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "harmonics/ambisonic_encoding.h"

namespace {

using namespace Lume;

constexpr double pi = std::numbers::pi;

double Factorial(unsigned int n) {
    return std::tgamma(n + 1.0);
}

/// sqrt(d (l - m)! / (l + m)!), d = 1 for m = 0 and 2 otherwise.
double SchmidtScale(unsigned int l, unsigned int m) {
    return std::sqrt((m == 0 ? 1.0 : 2.0) * Factorial(l - m) / Factorial(l + m));
}

// The standard library's function has no Condon-Shortley phase. To degree 15, on and near the poles too.
TEST(AssociatedLegendre, AgreesWithTheStandardLibrary) {
    for (unsigned int l = 0; l <= 15; ++l)
        for (unsigned int m = 0; m <= l; ++m)
            for (int step = -20; step <= 20; ++step) {
                const double x = std::sin(step * pi / 40.0);
                const double plain = std::assoc_legendre(l, m, x);
                const double schmidt = SchmidtScale(l, m) * plain;
                const double sign = m % 2 != 0 ? -1.0 : 1.0;
                const int order = static_cast<int>(m);
                SCOPED_TRACE(testing::Message() << l << ", " << m << " at " << x);
                EXPECT_NEAR(AssociatedLegendreFunctions(l, order, x, SchmidtSeminormalized3D), schmidt, 1e-10);
                EXPECT_NEAR(AssociatedLegendreFunctions(l, order, x, FullyNormalized3D),
                            std::sqrt(2.0 * l + 1.0) * schmidt, 1e-10);
                const double size = 1e-10 * std::max(1.0, 1.0 / SchmidtScale(l, m));
                EXPECT_NEAR(AssociatedLegendreFunctions(l, order, x, Unnormalized), sign * plain, size);
                // Negative orders: the phase moves to the normalised functions.
                if (m == 0) continue;
                EXPECT_NEAR(AssociatedLegendreFunctions(l, -order, x, Unnormalized), plain, size);
                EXPECT_NEAR(AssociatedLegendreFunctions(l, -order, x, SchmidtSeminormalized3D), sign * schmidt, 1e-10);
                EXPECT_NEAR(AssociatedLegendreFunctions(l, -order, x, GaussNormalization),
                            std::sqrt(2.0 * l + 1.0) * schmidt, 1e-10);
            }
    EXPECT_EQ(AssociatedLegendreFunctions(3, -4, 0.5, FullyNormalized3D), 0.0);
    EXPECT_EQ(LegendrePolynomials(7, -1.0), -1.0);
}

// The complex harmonics: orthonormal ones for Unnormalized (the standard library's, which has the phase), conjugates
// for negative orders, magnitude 1 for Gauss. pi in 1 / (4 pi) is a single-precision constant.
TEST(SphericalHarmonics, ComplexFormPhaseAndOddities) {
    const double colatitude = 1.1, azimuth = 2.3;
    for (unsigned int l = 0; l <= 9; ++l)
        for (int m = -static_cast<int>(l); m <= static_cast<int>(l); ++m) {
            const auto a = static_cast<unsigned int>(std::abs(m));
            const std::complex<double> value = SphericalHarmonics(l, m, colatitude, azimuth, Unnormalized);
            std::complex<double> expected =
                std::sph_legendre(l, a, colatitude) * std::polar(1.0, static_cast<double>(a) * azimuth);
            // libstdc++ includes the phase in sph_legendre.
            if (m < 0) expected = (a % 2 != 0 ? -1.0 : 1.0) * std::conj(expected);
            expected *= std::sqrt(pi / static_cast<double>(std::numbers::pi_v<float>));
            EXPECT_NEAR(std::abs(value - expected), 0.0, 1e-12) << l << ", " << m;
            EXPECT_NEAR(std::abs(SphericalHarmonics(l, m, colatitude, azimuth, GaussNormalization)), 1.0, 1e-14);
        }
    EXPECT_EQ(SphericalHarmonics(2, 3, colatitude, azimuth, FullyNormalized3D), 0.0);

    const CartesianVector position{0.3f, -0.5f, 0.7f};
    const auto basis = SphericalHarmonicsBasis(3, position, SchmidtSeminormalized3D, AlternateDegrees);
    const auto gains = AmbisonicEncodingVector(3, position, SchmidtSeminormalized3D, AlternateDegrees);
    ASSERT_EQ(basis.size(), 16u);
    EXPECT_NEAR(basis[9].real(), gains[9], 1e-14);  // (3, 3)
    EXPECT_EQ(CylindricalHarmonicsBasis(3, position, SchmidtSeminormalized2D, IncreasingDegrees).size(), 7u);
    EXPECT_STREQ(GetSphericalHarmonicsNormalizatioName(FullyNormalized2D), "FullyNormalized2D");
    EXPECT_STREQ(GetSphericalHarmonicsNormalizatioName(static_cast<SphericalHarmonicsNormalization>(6)), "");
}

// max-rE: the weights maximise the energy vector, so its length is the root r itself (and cos(pi / (2 N + 2)) in the
// plane). In-phase: the panning function sum (2 l + 1) g P never falls below 0 and vanishes behind.
TEST(AmbisonicWeights, ReachTheirAims) {
    for (unsigned int order = 1; order <= 7; ++order) {
        std::vector<double> maxRe, inPhase, maxRe2D, inPhase2D;
        AmbisonicMaxReOptimizedGains(order, maxRe);
        AmbisonicInPhaseOptimizedGains(order, inPhase);
        AmbisonicMaxReOptimizedGains2D(order, maxRe2D);
        AmbisonicInPhaseOptimizedGains2D(order, inPhase2D);
        ASSERT_EQ(maxRe.size(), std::size_t{order + 1} * (order + 1));
        ASSERT_EQ(inPhase2D.size(), 2 * std::size_t{order} + 1);
        const auto of3D = [](std::vector<double> const& weights, std::size_t l) { return weights[l * l]; };
        const auto of2D = [](std::vector<double> const& weights, std::size_t l) { return weights[2 * l]; };
        double energy = 0.0, vector = 0.0, energy2D = of2D(maxRe2D, 0) * of2D(maxRe2D, 0), vector2D = 0.0;
        for (std::size_t l = 0; l <= order; ++l) {
            const auto degree = static_cast<double>(l);
            energy += (2.0 * degree + 1.0) * of3D(maxRe, l) * of3D(maxRe, l);
            if (l == 0) continue;
            vector += 2.0 * degree * of3D(maxRe, l) * of3D(maxRe, l - 1);
            energy2D += 2.0 * of2D(maxRe2D, l) * of2D(maxRe2D, l);
            vector2D += 2.0 * of2D(maxRe2D, l) * of2D(maxRe2D, l - 1);
        }
        EXPECT_NEAR(std::legendre(order + 1, vector / energy), 0.0, 1e-11) << order;
        EXPECT_GT(vector / energy, std::cos(2.4048 / (order + 1.5)) - 1e-3);  // no smaller root
        EXPECT_NEAR(vector2D / energy2D, std::cos(pi / (2.0 * order + 2.0)), 1e-7) << order;

        for (int k = 0; k <= 180; ++k) {
            const double angle = k * pi / 180.0;
            double sum = 0.0, sum2D = 1.0;
            for (std::size_t l = 0; l <= order; ++l) {
                const auto degree = static_cast<unsigned int>(l);
                sum += (2.0 * degree + 1.0) * of3D(inPhase, l) * std::legendre(degree, std::cos(angle));
                if (l > 0) sum2D += 2.0 * of2D(inPhase2D, l) * std::cos(degree * angle);
            }
            // Closed forms: (N + 1) ((1 + cos) / 2)^N in space, and 4^N / C(2 N, N) ((1 + cos) / 2)^N in the plane.
            const double shape = std::pow(0.5 + 0.5 * std::cos(angle), order);
            EXPECT_NEAR(sum, (order + 1.0) * shape, 1e-12);
            EXPECT_NEAR(sum2D,
                        std::pow(4.0, order) * Factorial(order) * Factorial(order) / Factorial(2 * order) * shape,
                        1e-11);
        }
    }
}

}  // namespace
