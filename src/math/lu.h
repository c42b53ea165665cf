#pragma once

#include <vector>

#include "math/real_matrix.h"

namespace orvandsp {

/// LU decomposition with partial pivoting: a(pivot, :) = L U, with L unit lower trapezoidal (m x min(m, n)) and U upper
/// trapezoidal (min(m, n) x n). Crout's form, column by column (Golub and Van Loan, "Matrix Computations", 1983).
class LU {
public:
    explicit LU(MatrixDouble const& a);

    /// Whether no diagonal element of U is exactly 0; true for an empty matrix.
    bool IsNonSingular() const;
    /// The determinant of a square matrix: the sign of the permutation times the product of the diagonal of U.
    double Det() const;
    MatrixDouble GetL() const;
    MatrixDouble GetU() const;
    /// Row i of L U is row GetPivot()[i] of the decomposed matrix.
    std::vector<int> const& GetPivot() const noexcept { return pivot; }
    int GetPivotSign() const noexcept { return pivotSign; }

    /// Solves a x = b for a square a. A singular a gives what the arithmetic gives.
    /// @param b  as many elements (rows) as a has rows; anything else has no solution, and the result is empty
    std::vector<double> Solve(std::vector<double> const& b) const;
    MatrixDouble Solve(MatrixDouble const& b) const;

private:
    MatrixDouble lu;  // both factors in one matrix; the ones on L's diagonal aren't stored
    unsigned int numRows;
    unsigned int numColumns;
    std::vector<int> pivot;
    int pivotSign = 1;
};

/// The decomposition as a free function: a(pivot, :) = l u.
/// @param pivot, pivotSign  may be null
void DecompositionLU(MatrixDouble const& a, MatrixDouble& l, MatrixDouble& u, std::vector<int>* pivot = nullptr,
                     int* pivotSign = nullptr);

/// The determinant of a square matrix, by its LU decomposition.
double Determinant(MatrixDouble const& m);
float Determinant(MatrixFloat const& m);

}  // namespace orvandsp
