#include "math/gauss_jordan_elimination.h"

#include <cmath>
#include <utility>

namespace orvandsp {

namespace {

/// row -= factor * pivotRow
template <typename T>
void Eliminate(std::vector<T>& row, T factor, std::vector<T> const& pivotRow) {
    for (std::size_t i = 0; i < row.size(); ++i) row[i] -= factor * pivotRow[i];
}

template <typename T>
void Run(Matrix<T>& a, Matrix<T>& b) {
    const std::size_t n = a.GetNumRows();
    const bool hasRightSides = b.GetNumRows() != 0;
    std::vector<int> isPivot(n, 0);
    std::vector<std::size_t> pivotRows(n), pivotColumns(n);

    for (std::size_t step = 0; step < n; ++step) {
        // A matrix of not-a-numbers offers no largest element: the first free row and column do then, so that the
        // elimination always comes to its end.
        T largest = T(-1);
        std::size_t pivotRow = 0, pivotColumn = 0;
        bool found = false;
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; isPivot[i] == 0 && j < n; ++j)
                if (isPivot[j] == 0 && (!found || std::abs(a[i][j]) > largest)) {
                    largest = std::isnan(a[i][j]) ? T(-1) : std::abs(a[i][j]);
                    pivotRow = i;
                    pivotColumn = j;
                    found = true;
                }
        isPivot[pivotColumn] = 1;
        if (pivotRow != pivotColumn) {
            std::swap(a[pivotRow], a[pivotColumn]);
            if (hasRightSides) std::swap(b[pivotRow], b[pivotColumn]);
        }
        pivotRows[step] = pivotRow;
        pivotColumns[step] = pivotColumn;

        const T reciprocal = T(1) / a[pivotColumn][pivotColumn];
        a[pivotColumn][pivotColumn] = T(1);
        for (T& element : a[pivotColumn]) element *= reciprocal;
        if (hasRightSides)
            for (T& element : b[pivotColumn]) element *= reciprocal;

        for (std::size_t i = 0; i < n; ++i) {
            if (i == pivotColumn) continue;
            const T factor = a[i][pivotColumn];
            a[i][pivotColumn] = T(0);
            Eliminate(a[i], factor, a[pivotColumn]);
            if (hasRightSides) Eliminate(b[i], factor, b[pivotColumn]);
        }
    }

    // The row swaps have permuted the inverse's columns: undo them, last one first.
    for (std::size_t step = n; step-- > 0;)
        if (pivotRows[step] != pivotColumns[step])
            for (std::size_t i = 0; i < n; ++i) std::swap(a[i][pivotRows[step]], a[i][pivotColumns[step]]);
}

template <typename T>
void RunWithoutRightSides(Matrix<T>& a) {
    Matrix<T> none;
    Run(a, none);
}

}  // namespace

void GaussJordanElimination(Matrix<float>& a, Matrix<float>& b) {
    Run(a, b);
}

void GaussJordanElimination(Matrix<double>& a, Matrix<double>& b) {
    Run(a, b);
}

void GaussJordanElimination(Matrix<float>& a) {
    RunWithoutRightSides(a);
}

void GaussJordanElimination(Matrix<double>& a) {
    RunWithoutRightSides(a);
}

}  // namespace orvandsp
