#pragma once

#include <complex>
#include <iosfwd>

#include "math/real_matrix.h"

namespace orvandsp {

/// Matrix of single-precision complex numbers. Its members work on each element, in place; results that are real
/// become complex numbers without an imaginary part.
class MatrixComplex : public Matrix<std::complex<float>> {
public:
    using Matrix<std::complex<float>>::Matrix;
    MatrixComplex() = default;
    MatrixComplex(Matrix<std::complex<float>> const& m) : Matrix<std::complex<float>>(m) {}
    /// @param real, imaginary  the two parts, of one shape
    MatrixComplex(MatrixFloat const& real, MatrixFloat const& imaginary);

    void Conj();
    void Abs();
    void Real();
    void Imag();
    /// Uniform values of the standard generator, both parts from the same range, the real one drawn first.
    void Random(float min, float max);
    void Random(float realMin, float realMax, float imagMin, float imagMax);
};

MatrixComplex Conj(MatrixComplex const& m);
MatrixFloat Real(MatrixComplex const& m);
MatrixFloat Imag(MatrixComplex const& m);
/// The magnitude of each element.
MatrixFloat Abs(MatrixComplex const& m);
/// The phase of each element [rad].
MatrixFloat Arg(MatrixComplex const& m);
/// The squared magnitude of each element, as std::norm has it.
MatrixFloat Norm(MatrixComplex const& m);
MatrixComplex RandomMatrixComplex(unsigned int rows, unsigned int columns, float min, float max);

/// "Matrix RxC = \n[", then each element as "(%.6f, %.6f)", row by row, and "]".
std::ostream& operator<<(std::ostream& stream, MatrixComplex const& m);

}  // namespace orvandsp
