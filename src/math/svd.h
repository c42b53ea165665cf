#pragma once

#include <vector>

#include "math/real_matrix.h"

namespace orvandsp {

/// Singular value decomposition a = U S transpose(V), by the method of Golub and Kahan: Householder reflections to
/// bidiagonal form, then implicitly shifted QR steps (Golub and Reinsch, "Singular value decomposition and least
/// squares solutions", Numer. Math. 14, 1970).
///
/// The thin form: with k = min(rows, columns), U is rows x k, S is k x k and V is columns x k. A wide matrix is
/// decomposed by way of its transpose.
///
/// Although the data are double, elements count as 0 from single-precision rounding down: the matrices here come from
/// single-precision positions and gains, and their digits beyond that are noise. The error of a reconstruction is of
/// that order, too.
class SVD {
public:
    /// @param wantU, wantV  whether to compute these factors; one that isn't wanted is empty
    SVD(MatrixDouble const& a, bool wantU, bool wantV);

    MatrixDouble const& GetU() const noexcept { return u; }
    MatrixDouble const& GetV() const noexcept { return v; }
    /// The singular values as a square diagonal matrix.
    MatrixDouble GetS() const;
    /// In decreasing order, none negative.
    std::vector<double> const& GetSingularValues() const noexcept { return s; }

    /// The largest singular value; 0 for an empty matrix.
    double GetNorm2() const { return s.empty() ? 0.0 : s.front(); }
    /// The largest singular value divided by the smallest; not a number for an empty or zero matrix.
    double GetCond() const { return s.empty() ? std::numeric_limits<double>::quiet_NaN() : s.front() / s.back(); }
    /// The root of the sum of the squared singular values (the Frobenius norm).
    double GetHilbertSchmidtNorm() const;
    /// The number of singular values above max(rows, columns) times the largest one times 2^-23.
    int Rank() const;

private:
    MatrixDouble u;
    MatrixDouble v;
    std::vector<double> s;
    unsigned int numRows;
    unsigned int numColumns;
};

/// The decomposition as a free function; s becomes the square diagonal matrix of the singular values.
void DecompositionSVD(MatrixDouble const& a, MatrixDouble& u, MatrixDouble& s, MatrixDouble& v);

/// The number of singular values that stand above rounding, see SVD::Rank.
int Rank(MatrixDouble const& m);
int Rank(MatrixFloat const& m);

}  // namespace orvandsp
