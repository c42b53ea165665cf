#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include "math/gauss_jordan_elimination.h"
#include "math/lu.h"
#include "math/pseudo_inverse.h"
#include "math/svd.h"

namespace {

using orvandsp::LU;
using orvandsp::Matrix;
using orvandsp::MatrixDouble;
using orvandsp::MatrixFloat;
using orvandsp::SVD;

constexpr double infinity = std::numeric_limits<double>::infinity();

MatrixDouble MakeRandom(unsigned int rows, unsigned int columns, unsigned int seed) {
    std::srand(seed);
    return orvandsp::Random(rows, columns, -1.0, 1.0);
}

MatrixDouble MakeIdentity(unsigned int n) {
    MatrixDouble m(n, n, 0.0);
    m.SetDiag(std::vector<double>(n, 1.0));
    return m;
}

/// The largest magnitude of a - b; infinite for different shapes or not a number.
double Distance(Matrix<double> const& a, Matrix<double> const& b) {
    if (a.GetNumRows() != b.GetNumRows() || a.GetNumColumns() != b.GetNumColumns()) return infinity;
    double largest = 0.0;
    for (unsigned int i = 0; i < a.GetNumRows(); ++i)
        for (unsigned int j = 0; j < a.GetNumColumns(); ++j) {
            const double distance = std::abs(a[i][j] - b[i][j]);
            if (std::isnan(distance)) return infinity;
            largest = std::max(largest, distance);
        }
    return largest;
}

/// An upper bidiagonal matrix with ones beside the diagonal.
MatrixDouble MakeBidiagonal(std::vector<double> const& diagonal) {
    const auto n = static_cast<unsigned int>(diagonal.size());
    MatrixDouble m(n, n, 0.0);
    m.SetDiag(diagonal);
    for (unsigned int i = 0; i + 1 < n; ++i) m[i][i + 1] = 1.0;
    return m;
}

/// A rows x columns matrix of given singular values, by orthonormal factors from Gram-Schmidt.
MatrixDouble MakeOfSingularValues(unsigned int rows, unsigned int columns, std::vector<double> const& values,
                                  unsigned int seed) {
    const auto orthonormalRows = [](MatrixDouble m) {
        for (unsigned int i = 0; i < m.GetNumRows(); ++i)
            for (int pass = 0; pass < 2; ++pass) {  // twice is enough
                for (unsigned int k = 0; k < i; ++k) {
                    double dot = 0.0;
                    for (unsigned int j = 0; j < m.GetNumColumns(); ++j) dot += m[i][j] * m[k][j];
                    for (unsigned int j = 0; j < m.GetNumColumns(); ++j) m[i][j] -= dot * m[k][j];
                }
                double norm = 0.0;
                for (const double x : m[i]) norm = std::hypot(norm, x);
                for (double& x : m[i]) x /= norm;
            }
        return m;
    };
    const auto count = static_cast<unsigned int>(values.size());
    MatrixDouble s(count, count, 0.0);
    s.SetDiag(values);
    return Transpose(orthonormalRows(MakeRandom(count, rows, seed))) * s *
           orthonormalRows(MakeRandom(count, columns, seed + 1));
}

// Red if a swap is forgotten or undone in the wrong order: the leading zero forces row and column swaps.
TEST(GaussJordan, InvertsAndSolvesWhereEveryPivotMustMove) {
    MatrixDouble a(3, 3, 0.0);
    a[0] = {0.0, 2.0, 1.0};
    a[1] = {5.0, 0.0, 0.0};
    a[2] = {0.0, 1.0, 3.0};
    const MatrixDouble original = a;
    MatrixDouble b = original * MakeRandom(3, 2, 7);
    GaussJordanElimination(a, b);
    EXPECT_LT(Distance(original * a, MakeIdentity(3)), 1e-15);
    EXPECT_LT(Distance(b, MakeRandom(3, 2, 7)), 1e-15);

    for (unsigned int n = 1; n <= 24; ++n) {
        const MatrixDouble m = MakeRandom(n, n, n);
        EXPECT_LT(Distance(m * Inverse(m), MakeIdentity(n)), 1e-11) << n;
    }
    MatrixFloat single(2, 2, 1.0f);
    single[0][0] = 0.0f;
    single.Inverse();
    EXPECT_EQ(single.GetRow(0), (std::vector<float>{-1.0f, 1.0f}));
}

TEST(GaussJordan, SingularOrBadNumbersComeToAnEnd) {
    MatrixDouble singular(2, 2, 1.0);
    singular.Inverse();
    EXPECT_FALSE(std::isfinite(singular[0][0]));
    MatrixDouble bad(3, 3, std::nan(""));
    bad.Inverse();
    EXPECT_TRUE(std::isnan(bad[2][1]));
}

// Ground truth: L U with its rows put back is the matrix; the determinant of a permuted triangle is known.
TEST(Lu, FactorsGiveTheMatrixBack) {
    for (const auto& [rows, columns] : {std::pair{6u, 6u}, {7u, 4u}, {3u, 8u}, {1u, 1u}}) {
        const MatrixDouble a = MakeRandom(rows, columns, rows * 10 + columns);
        const LU lu(a);
        const MatrixDouble l = lu.GetL();
        const MatrixDouble product = l * lu.GetU();
        MatrixDouble permuted = a;
        for (unsigned int i = 0; i < rows; ++i) permuted[i] = a[static_cast<std::size_t>(lu.GetPivot()[i])];
        EXPECT_LT(Distance(product, permuted), 1e-14) << rows << " x " << columns;
        // Partial pivoting: no multiplier above 1.
        for (unsigned int i = 0; i < rows; ++i)
            for (const double x : l[i]) EXPECT_LE(std::abs(x), 1.0);
    }
}

TEST(Lu, DeterminantAndSolution) {
    MatrixDouble m(3, 3, 0.0);
    m[0] = {0.0, 2.0, 9.0};
    m[1] = {0.0, 0.0, 4.0};
    m[2] = {3.0, 5.0, 1.0};
    EXPECT_NEAR(Determinant(m), 24.0, 1e-13);
    MatrixFloat swapped(2, 2, 0.0f);
    swapped[0][1] = 2.0f;
    swapped[1][0] = 3.0f;
    EXPECT_EQ(Determinant(swapped), -6.0f);

    const std::vector<double> x = LU(m).Solve(std::vector<double>{11.0, 4.0, 9.0});
    ASSERT_EQ(x.size(), 3u);
    for (const double element : x) EXPECT_NEAR(element, 1.0, 1e-14);
    const MatrixDouble a = MakeRandom(9, 9, 3);
    EXPECT_LT(Distance(LU(a).Solve(MakeIdentity(9)), Inverse(a)), 1e-11);

    EXPECT_FALSE(LU(MatrixDouble(2, 2, 1.0)).IsNonSingular());
    EXPECT_TRUE(LU(m).IsNonSingular());
    EXPECT_TRUE(LU(MatrixDouble()).IsNonSingular());
    EXPECT_TRUE(LU(m).Solve(std::vector<double>{1.0}).empty());
}

// Reconstruction, orthonormal factors, order and sign of the values, on tall, wide, square, deficient and graded
// matrices. The tolerance is the method's: single-precision rounding of the largest value.
TEST(Svd, DecomposesEveryShape) {
    const std::vector<MatrixDouble> cases = {
        MakeRandom(8, 8, 1),
        MakeRandom(64, 16, 2),
        MakeRandom(5, 12, 3),
        MakeRandom(1, 6, 4),
        MakeRandom(6, 1, 5),
        MatrixDouble(4, 3, 0.0),
        MatrixDouble(6, 4, 1.0),
        MakeBidiagonal({1.0, 2.0, 0.0, 3.0, 4.0, 5.0}),
        MakeBidiagonal({1.0, 2.0, 3.0, 0.0}),
        MakeOfSingularValues(10, 7, {5.0, 5.0, 5.0, 1.0, 0.0}, 6),
        MakeOfSingularValues(9, 9, {1.0, 1e-2, 1e-4, 1e-6, 1e-8, 1e-10}, 8),
        MakeOfSingularValues(6, 6, {1e160, 1e159, 1e158}, 10),
    };
    for (std::size_t index = 0; index < cases.size(); ++index) {
        SCOPED_TRACE(index);
        MatrixDouble const& a = cases[index];
        MatrixDouble u, s, v;
        DecompositionSVD(a, u, s, v);
        const SVD svd(a, true, true);
        const double tolerance = 1e-6 * svd.GetNorm2() + 1e-12;
        EXPECT_LE(Distance(u * s * Transpose(v), a), tolerance);
        const unsigned int count = std::min(a.GetNumRows(), a.GetNumColumns());
        EXPECT_LT(Distance(Transpose(u) * u, MakeIdentity(count)), 1e-13);
        EXPECT_LT(Distance(Transpose(v) * v, MakeIdentity(count)), 1e-13);

        std::vector<double> const& values = svd.GetSingularValues();
        ASSERT_EQ(values.size(), count);
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_GE(values[i], 0.0);
            EXPECT_LE(values[i], values[i == 0 ? 0 : i - 1]);
        }
        const SVD bare(a, false, false);
        EXPECT_EQ(bare.GetSingularValues(), values);
        EXPECT_EQ(bare.GetU().GetNumRows(), 0u);
    }
}

TEST(Svd, ValuesNormsAndRankOfKnownMatrices) {
    const SVD svd(MakeOfSingularValues(7, 5, {4.0, 3.0, 2.0, 0.5, 0.25}, 11), false, false);
    const double expected[] = {4.0, 3.0, 2.0, 0.5, 0.25};
    for (std::size_t i = 0; i < 5; ++i) EXPECT_NEAR(svd.GetSingularValues()[i], expected[i], 1e-12);
    EXPECT_NEAR(svd.GetNorm2(), 4.0, 1e-12);
    EXPECT_NEAR(svd.GetCond(), 16.0, 1e-10);
    EXPECT_NEAR(svd.GetHilbertSchmidtNorm(), std::sqrt(29.3125), 1e-12);
    EXPECT_EQ(svd.Rank(), 5);

    // A value counts from max(rows, columns) * 2^-23 of the largest on: 20 / 2^23 = 2.4e-6.
    EXPECT_EQ(orvandsp::Rank(MakeOfSingularValues(20, 4, {1.0, 1.0, 3e-6}, 12)), 3);
    EXPECT_EQ(orvandsp::Rank(MakeOfSingularValues(20, 4, {1.0, 1.0, 1.8e-6}, 12)), 2);
    EXPECT_EQ(orvandsp::Rank(MakeOfSingularValues(4, 20, {1.0, 1.0, 1.8e-6}, 12)), 2);
    MatrixFloat repeated(3, 3, 1.0f);
    repeated[1] = {1.0f, 0.0f, 2.0f};
    EXPECT_EQ(orvandsp::Rank(repeated), 2);
}

// The four conditions of Penrose hold for the pseudo-inverse and for nothing else.
TEST(PseudoInverse, FulfilsPenrosesConditions) {
    const std::vector<MatrixDouble> cases = {
        MakeRandom(5, 5, 21), MakeRandom(9, 4, 22),    MakeRandom(16, 64, 23),
        MakeRandom(1, 3, 24), MatrixDouble(3, 5, 2.0), MakeOfSingularValues(8, 6, {3.0, 2.0, 1.0}, 25),
    };
    for (std::size_t index = 0; index < cases.size(); ++index) {
        SCOPED_TRACE(index);
        MatrixDouble const& a = cases[index];
        MatrixDouble p;
        double condition;
        PseudoInverse(a, p, condition);
        const double tolerance = 5e-7;  // the decomposition's single-precision rounding; worst measured 1.3e-7
        EXPECT_LT(Distance(a * p * a, a), tolerance);
        EXPECT_LT(Distance(p * a * p, p), tolerance);
        EXPECT_LT(Distance(a * p, Transpose(a * p)), tolerance);
        EXPECT_LT(Distance(p * a, Transpose(p * a)), tolerance);
    }
    const MatrixDouble square = MakeRandom(5, 5, 21);
    EXPECT_LT(Distance(orvandsp::PseudoInverse(square), Inverse(square)), 5e-7);
}

TEST(PseudoInverse, CutsWhatIsRoundingAndTellsTheCondition) {
    // 1e-8 is below 4 * 2^-23 and is cut; kept, it would put elements of 1e8 into the result.
    const MatrixDouble illConditioned = MakeOfSingularValues(4, 4, {2.0, 1.0, 0.5, 1e-8}, 31);
    MatrixDouble p;
    double condition;
    PseudoInverse(illConditioned, p, condition);
    EXPECT_NEAR(SVD(p, false, false).GetNorm2(), 2.0, 1e-5);
    EXPECT_GT(condition, 1e7);

    // The limit follows the longer side: 2.4e-6 here.
    PseudoInverse(MakeOfSingularValues(4, 20, {1.0, 1.0, 1.0, 1.8e-6}, 32), p, condition);
    EXPECT_NEAR(SVD(p, false, false).GetNorm2(), 1.0, 1e-5);

    PseudoInverse(MatrixDouble(3, 5, 0.0), p, condition);
    EXPECT_EQ(Distance(p, MatrixDouble(5, 3, 0.0)), 0.0);
    EXPECT_TRUE(std::isnan(condition));

    MatrixFloat single(2, 3, 0.0f), inverse;
    single[0][0] = 4.0f;
    single[1][2] = 0.5f;
    float singleCondition;
    PseudoInverse(single, inverse, singleCondition);
    ASSERT_EQ(inverse.GetNumRows(), 3u);
    EXPECT_NEAR(inverse[0][0], 0.25f, 1e-7f);
    EXPECT_NEAR(inverse[2][1], 2.0f, 1e-6f);
    EXPECT_NEAR(singleCondition, 8.0f, 1e-5f);
}

// Nothing that a layout may contain hangs the decomposition.
TEST(PseudoInverse, BadNumbersAndEmptyMatricesComeToAnEnd) {
    for (const double bad : {std::nan(""), infinity, 1e308, std::numeric_limits<double>::denorm_min()}) {
        MatrixDouble m = MakeRandom(6, 4, 41);
        m[2][1] = bad;
        EXPECT_EQ(orvandsp::PseudoInverse(m).GetNumRows(), 4u) << bad;
        EXPECT_EQ(orvandsp::PseudoInverse(MatrixDouble(6, 4, bad)).GetNumRows(), 4u) << bad;
    }
    EXPECT_EQ(orvandsp::PseudoInverse(MatrixDouble()).GetNumRows(), 0u);
    EXPECT_EQ(orvandsp::Rank(MatrixDouble()), 0);
}

}  // namespace
