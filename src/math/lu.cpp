#include "math/lu.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace orvandsp {

LU::LU(MatrixDouble const& a) : lu(a), numRows(a.GetNumRows()), numColumns(a.GetNumColumns()), pivot(a.GetNumRows()) {
    std::iota(pivot.begin(), pivot.end(), 0);
    std::vector<double> column(numRows);
    for (unsigned int j = 0; j < numColumns; ++j) {
        for (unsigned int i = 0; i < numRows; ++i) column[i] = lu[i][j];
        for (unsigned int i = 0; i < numRows; ++i) {
            double sum = 0.0;
            for (unsigned int k = 0; k < std::min(i, j); ++k) sum += lu[i][k] * column[k];
            column[i] -= sum;
            lu[i][j] = column[i];
        }
        if (j >= numRows) continue;
        unsigned int p = j;
        for (unsigned int i = j + 1; i < numRows; ++i)
            if (std::abs(column[i]) > std::abs(column[p])) p = i;
        if (p != j) {
            std::swap(lu[p], lu[j]);
            std::swap(pivot[p], pivot[j]);
            pivotSign = -pivotSign;
        }
        // A pivot of 0 has only zeros below it: there is nothing to divide.
        if (lu[j][j] != 0.0)
            for (unsigned int i = j + 1; i < numRows; ++i) lu[i][j] /= lu[j][j];
    }
}

bool LU::IsNonSingular() const {
    for (unsigned int j = 0; j < std::min(numRows, numColumns); ++j)
        if (lu[j][j] == 0.0) return false;
    return true;
}

double LU::Det() const {
    double det = pivotSign;
    for (unsigned int j = 0; j < std::min(numRows, numColumns); ++j) det *= lu[j][j];
    return det;
}

MatrixDouble LU::GetL() const {
    MatrixDouble l(numRows, std::min(numRows, numColumns), 0.0);
    for (unsigned int i = 0; i < l.GetNumRows(); ++i)
        for (unsigned int j = 0; j < l.GetNumColumns() && j <= i; ++j) l[i][j] = i == j ? 1.0 : lu[i][j];
    return l;
}

MatrixDouble LU::GetU() const {
    MatrixDouble u(std::min(numRows, numColumns), numColumns, 0.0);
    for (unsigned int i = 0; i < u.GetNumRows(); ++i)
        for (unsigned int j = i; j < numColumns; ++j) u[i][j] = lu[i][j];
    return u;
}

std::vector<double> LU::Solve(std::vector<double> const& b) const {
    MatrixDouble column(static_cast<unsigned int>(b.size()), 1, 0.0);
    for (unsigned int i = 0; i < column.GetNumRows(); ++i) column[i][0] = b[i];
    const MatrixDouble x = Solve(column);
    std::vector<double> result(x.GetNumRows());
    for (unsigned int i = 0; i < x.GetNumRows(); ++i) result[i] = x[i][0];
    return result;
}

MatrixDouble LU::Solve(MatrixDouble const& b) const {
    if (b.GetNumRows() != numRows || numRows != numColumns) return MatrixDouble();
    MatrixDouble x = b;
    for (unsigned int i = 0; i < numRows; ++i) x[i] = b[static_cast<std::size_t>(pivot[i])];
    for (unsigned int column = 0; column < b.GetNumColumns(); ++column) {
        for (unsigned int i = 0; i < numRows; ++i)
            for (unsigned int k = 0; k < i; ++k) x[i][column] -= lu[i][k] * x[k][column];
        for (unsigned int i = numRows; i-- > 0;) {
            for (unsigned int k = i + 1; k < numRows; ++k) x[i][column] -= lu[i][k] * x[k][column];
            x[i][column] /= lu[i][i];
        }
    }
    return x;
}

void DecompositionLU(MatrixDouble const& a, MatrixDouble& l, MatrixDouble& u, std::vector<int>* pivot, int* pivotSign) {
    const LU decomposition(a);
    l = decomposition.GetL();
    u = decomposition.GetU();
    if (pivot != nullptr) *pivot = decomposition.GetPivot();
    if (pivotSign != nullptr) *pivotSign = decomposition.GetPivotSign();
}

double Determinant(MatrixDouble const& m) {
    return LU(m).Det();
}

float Determinant(MatrixFloat const& m) {
    MatrixDouble d;
    FloatToDouble(m, d);
    return static_cast<float>(LU(d).Det());
}

}  // namespace orvandsp
