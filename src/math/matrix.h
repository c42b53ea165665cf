#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>
#include <vector>

namespace orvandsp {

/// Dense matrix for the work of set-up: layouts, decoders, fits. It favours clarity over speed (one vector per row,
/// results by value) and allocates in every operation, so it has no place on the audio thread.
///
/// Elements are reached by m[row][column], both from 0. Indices and shapes are the caller's business: nothing here
/// tests them, and nothing throws for bad numbers.
/// @tparam T  float, double or std::complex<float>
template <typename T>
class Matrix {
public:
    /// An empty matrix.
    Matrix() = default;
    /// A matrix of equal elements.
    Matrix(unsigned int numberOfRows, unsigned int numberOfColumns, T value)
        : numRows(numberOfRows), numColumns(numberOfColumns), rows(numRows, std::vector<T>(numColumns, value)) {}
    virtual ~Matrix() = default;
    Matrix(Matrix const&) = default;
    Matrix(Matrix&&) noexcept = default;
    Matrix& operator=(Matrix const&) = default;
    Matrix& operator=(Matrix&&) noexcept = default;

    unsigned int GetNumRows() const noexcept { return numRows; }
    unsigned int GetNumColumns() const noexcept { return numColumns; }

    /// One row by reference; its length must stay as it is.
    std::vector<T>& operator[](std::size_t row) { return rows[row]; }
    std::vector<T> const& operator[](std::size_t row) const { return rows[row]; }

    /// A copy of one row.
    std::vector<T> GetRow(unsigned int row) const { return rows[row]; }

    /// The sum of the elements of one row, from left to right.
    T GetSumRow(unsigned int row) const {
        T sum = T(0);
        for (T const& element : rows[row]) sum += element;
        return sum;
    }

    /// The matrix product. The right side must have as many rows as this matrix has columns.
    Matrix operator*(Matrix const& right) const {
        Matrix result(numRows, right.numColumns, T(0));
        for (unsigned int i = 0; i < numRows; ++i)
            for (unsigned int j = 0; j < right.numColumns; ++j)
                for (unsigned int k = 0; k < numColumns; ++k) result[i][j] += rows[i][k] * right[k][j];
        return result;
    }

    /// Writes the main diagonal, as far as matrix and vector reach. The other elements stay.
    void SetDiag(std::vector<T> const& diagonal) {
        const std::size_t count = std::min<std::size_t>({numRows, numColumns, diagonal.size()});
        for (std::size_t i = 0; i < count; ++i) rows[i][i] = diagonal[i];
    }

protected:
    /// Replaces each element x by map(x).
    template <typename Map>
    void ForEach(Map map) {
        for (auto& row : rows)
            for (T& element : row) element = map(element);
    }

    std::uint32_t numRows = 0;
    std::uint32_t numColumns = 0;
    std::vector<std::vector<T>> rows;
};

template <typename T>
Matrix<T> Transpose(Matrix<T> const& m) {
    Matrix<T> result(m.GetNumColumns(), m.GetNumRows(), T(0));
    for (unsigned int i = 0; i < m.GetNumRows(); ++i)
        for (unsigned int j = 0; j < m.GetNumColumns(); ++j) result[j][i] = m[i][j];
    return result;
}

}  // namespace orvandsp
