#pragma once

#include "math/matrix.h"

namespace orvandsp {

/// What MatrixFloat and MatrixDouble share: operations on each element, in place.
/// @tparam T  float or double
template <typename T>
class RealMatrix : public Matrix<T> {
public:
    using Matrix<T>::Matrix;
    RealMatrix() = default;
    /// A matrix with the elements of its base. Not explicit: products and transposes come as the base.
    RealMatrix(Matrix<T> const& m) : Matrix<T>(m) {}

    void Abs();
    /// Uniform values of the standard generator (std::rand), both ends included.
    void Random(T min, T max);
    /// Decibels to amplitude: 10^(0.05 x).
    void dB2lin();
    /// Amplitude to decibels: 20 log10(x).
    void lin2dB();
    /// Limits each element to [min, max]; not a number becomes max.
    void Clip(T min, T max);
    /// Replaces a square matrix by its inverse (Gauss-Jordan); a singular one ends in infinities or not-a-numbers.
    void Inverse();
};

extern template class RealMatrix<float>;
extern template class RealMatrix<double>;

class MatrixFloat : public RealMatrix<float> {
public:
    using RealMatrix<float>::RealMatrix;
    MatrixFloat() = default;
    MatrixFloat(Matrix<float> const& m) : RealMatrix<float>(m) {}
};

class MatrixDouble : public RealMatrix<double> {
public:
    using RealMatrix<double>::RealMatrix;
    MatrixDouble() = default;
    MatrixDouble(Matrix<double> const& m) : RealMatrix<double>(m) {}
};

/// Copies with each element replaced.
MatrixFloat Abs(MatrixFloat const& m);
MatrixDouble Abs(MatrixDouble const& m);
MatrixFloat Sin(MatrixFloat const& m);
MatrixDouble Sin(MatrixDouble const& m);
MatrixFloat Cos(MatrixFloat const& m);
MatrixDouble Cos(MatrixDouble const& m);

/// A new matrix of uniform values of the standard generator.
MatrixFloat Random(unsigned int rows, unsigned int columns, float min, float max);
MatrixDouble Random(unsigned int rows, unsigned int columns, double min, double max);

/// The inverse of a square matrix, by Gauss-Jordan elimination.
MatrixFloat Inverse(MatrixFloat const& m);
MatrixDouble Inverse(MatrixDouble const& m);

/// Conversions; the second argument takes the shape of the first.
void FloatToDouble(Matrix<float> const& source, Matrix<double>& destination);
void DoubleToFloat(Matrix<double> const& source, Matrix<float>& destination);

}  // namespace orvandsp
