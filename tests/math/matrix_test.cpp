#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <vector>

#include "math/matrix_complex.h"
#include "math/real_matrix.h"

namespace {

using orvandsp::MatrixComplex;
using orvandsp::MatrixDouble;
using orvandsp::MatrixFloat;

// Red if rows and columns change places anywhere: every shape here is rectangular.
TEST(Matrix, ProductAndTransposeOfRectangularShapes) {
    MatrixDouble a(2, 3, 0.0), b(3, 4, 0.0);
    for (unsigned int i = 0; i < 3; ++i) {
        for (unsigned int j = 0; j < 2; ++j) a[j][i] = 10.0 * j + i;
        for (unsigned int j = 0; j < 4; ++j) b[i][j] = i == j ? 1.0 : 0.0;
    }
    b[2][3] = 2.0;
    const MatrixDouble product = a * b;
    ASSERT_EQ(product.GetNumRows(), 2u);
    ASSERT_EQ(product.GetNumColumns(), 4u);
    EXPECT_EQ(product.GetRow(1), (std::vector<double>{10.0, 11.0, 12.0, 24.0}));
    EXPECT_EQ(product.GetSumRow(1), 57.0);

    const MatrixDouble transposed = Transpose(product);
    ASSERT_EQ(transposed.GetNumRows(), 4u);
    EXPECT_EQ(transposed.GetRow(3), (std::vector<double>{4.0, 24.0}));

    MatrixDouble diagonal(3, 2, 7.0);
    diagonal.SetDiag({1.0, 2.0, 3.0});
    EXPECT_EQ(diagonal.GetRow(1), (std::vector<double>{7.0, 2.0}));
    EXPECT_EQ(diagonal.GetRow(2), (std::vector<double>{7.0, 7.0}));
}

TEST(RealMatrix, ElementwiseOperationsAtTheirEdges) {
    const float nan = std::nanf("");
    MatrixFloat m(1, 5, 0.0f);
    m[0] = {-2.0f, 0.25f, 3.0f, nan, std::numeric_limits<float>::infinity()};
    m.Clip(0.0f, 1.0f);
    EXPECT_EQ(m.GetRow(0), (std::vector<float>{0.0f, 0.25f, 1.0f, 1.0f, 1.0f}));

    MatrixDouble levels(1, 3, 0.0);
    levels[0] = {0.0, -20.0, 6.0};
    levels.dB2lin();
    EXPECT_EQ(levels[0][0], 1.0);
    EXPECT_NEAR(levels[0][1], 0.1, 1e-15);
    levels[0][0] = 0.0;
    levels.lin2dB();
    EXPECT_EQ(levels[0][0], -std::numeric_limits<double>::infinity());
    EXPECT_NEAR(levels[0][2], 6.0, 1e-14);

    MatrixFloat rounded;
    MatrixDouble wide(2, 3, 1.0 / 3.0);
    DoubleToFloat(wide, rounded);
    ASSERT_EQ(rounded.GetNumColumns(), 3u);
    FloatToDouble(rounded, wide);
    EXPECT_EQ(wide[1][2], static_cast<double>(1.0f / 3.0f));
}

// Red if the range is shifted or scaled: the extremes of many draws show it.
TEST(RealMatrix, RandomValuesFillTheirRange) {
    const MatrixFloat m = orvandsp::Random(100, 100, -3.0f, 1.0f);
    std::vector<float> all;
    for (unsigned int i = 0; i < 100; ++i) all.insert(all.end(), m[i].begin(), m[i].end());
    const auto [lowest, highest] = std::minmax_element(all.begin(), all.end());
    EXPECT_TRUE(*lowest >= -3.0f && *lowest < -2.99f) << *lowest;
    EXPECT_TRUE(*highest <= 1.0f && *highest > 0.99f) << *highest;
}

TEST(MatrixComplex, PartsAndPrintedForm) {
    MatrixFloat real(1, 2, 3.0f), imaginary(1, 2, -4.0f);
    real[0][1] = 0.0f;
    const MatrixComplex m(real, imaginary);
    EXPECT_EQ(Abs(m)[0][0], 5.0f);
    EXPECT_EQ(Norm(m)[0][0], 25.0f);
    EXPECT_NEAR(Arg(m)[0][1], -1.5707964f, 1e-6f);
    EXPECT_EQ(Conj(m)[0][0], (std::complex<float>(3.0f, 4.0f)));
    EXPECT_EQ(Imag(m)[0][1], -4.0f);
    EXPECT_EQ(Real(m)[0][0], 3.0f);

    MatrixComplex inPlace = m;
    inPlace.Imag();
    EXPECT_EQ(inPlace[0][0], (std::complex<float>(-4.0f, 0.0f)));
    inPlace.Random(1.0f, 2.0f, -2.0f, -1.0f);
    EXPECT_TRUE(inPlace[0][0].real() >= 1.0f && inPlace[0][0].imag() <= -1.0f);

    std::ostringstream text;
    text << m;
    EXPECT_EQ(text.str(), "Matrix 1x2 = \n[(3.000000, -4.000000)(0.000000, -4.000000)]");
}

}  // namespace
