#include "math/matrix_complex.h"

#include <cstdio>
#include <cstdlib>
#include <ostream>

namespace orvandsp {

namespace {

using Complex = std::complex<float>;

float Uniform(float min, float max) {
    return min + (max - min) * (static_cast<float>(std::rand()) / static_cast<float>(RAND_MAX));
}

template <typename Map>
MatrixFloat RealMap(MatrixComplex const& m, Map map) {
    MatrixFloat result(m.GetNumRows(), m.GetNumColumns(), 0.0f);
    for (unsigned int i = 0; i < m.GetNumRows(); ++i)
        for (unsigned int j = 0; j < m.GetNumColumns(); ++j) result[i][j] = map(m[i][j]);
    return result;
}

}  // namespace

MatrixComplex::MatrixComplex(MatrixFloat const& real, MatrixFloat const& imaginary)
    : Matrix<Complex>(real.GetNumRows(), real.GetNumColumns(), Complex()) {
    for (unsigned int i = 0; i < numRows; ++i)
        for (unsigned int j = 0; j < numColumns; ++j) rows[i][j] = Complex(real[i][j], imaginary[i][j]);
}

void MatrixComplex::Conj() {
    ForEach([](Complex z) { return std::conj(z); });
}

void MatrixComplex::Abs() {
    ForEach([](Complex z) { return Complex(std::abs(z)); });
}

void MatrixComplex::Real() {
    ForEach([](Complex z) { return Complex(z.real()); });
}

void MatrixComplex::Imag() {
    ForEach([](Complex z) { return Complex(z.imag()); });
}

void MatrixComplex::Random(float min, float max) {
    Random(min, max, min, max);
}

void MatrixComplex::Random(float realMin, float realMax, float imagMin, float imagMax) {
    ForEach([=](Complex) {
        const float real = Uniform(realMin, realMax);
        return Complex(real, Uniform(imagMin, imagMax));
    });
}

MatrixComplex Conj(MatrixComplex const& m) {
    MatrixComplex result = m;
    result.Conj();
    return result;
}

MatrixFloat Real(MatrixComplex const& m) {
    return RealMap(m, [](Complex z) { return z.real(); });
}

MatrixFloat Imag(MatrixComplex const& m) {
    return RealMap(m, [](Complex z) { return z.imag(); });
}

MatrixFloat Abs(MatrixComplex const& m) {
    return RealMap(m, [](Complex z) { return std::abs(z); });
}

MatrixFloat Arg(MatrixComplex const& m) {
    return RealMap(m, [](Complex z) { return std::arg(z); });
}

MatrixFloat Norm(MatrixComplex const& m) {
    return RealMap(m, [](Complex z) { return std::norm(z); });
}

MatrixComplex RandomMatrixComplex(unsigned int rows, unsigned int columns, float min, float max) {
    MatrixComplex result(rows, columns, Complex());
    result.Random(min, max);
    return result;
}

std::ostream& operator<<(std::ostream& stream, MatrixComplex const& m) {
    stream << "Matrix " << m.GetNumRows() << "x" << m.GetNumColumns() << " = \n[";
    for (unsigned int i = 0; i < m.GetNumRows(); ++i)
        for (Complex const& z : m[i]) {
            char text[128];  // two floats of at most 47 characters each
            std::snprintf(text, sizeof text, "(%.6f, %.6f)", static_cast<double>(z.real()),
                          static_cast<double>(z.imag()));
            stream << text;
        }
    return stream << "]";
}

}  // namespace orvandsp
