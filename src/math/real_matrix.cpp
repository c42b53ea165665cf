#include "math/real_matrix.h"

#include <cmath>
#include <cstdlib>

#include "math/gauss_jordan_elimination.h"

namespace orvandsp {

template <typename T>
void RealMatrix<T>::Abs() {
    this->ForEach([](T x) { return std::abs(x); });
}

template <typename T>
void RealMatrix<T>::Random(T min, T max) {
    this->ForEach([=](T) { return min + (max - min) * (static_cast<T>(std::rand()) / static_cast<T>(RAND_MAX)); });
}

template <typename T>
void RealMatrix<T>::dB2lin() {
    this->ForEach([](T x) { return std::pow(T(10), T(0.05) * x); });
}

template <typename T>
void RealMatrix<T>::lin2dB() {
    this->ForEach([](T x) { return T(20) * std::log10(x); });
}

template <typename T>
void RealMatrix<T>::Clip(T min, T max) {
    // The test against max comes first and is written as "not at or below", so that not a number becomes max.
    this->ForEach([=](T x) { return !(x <= max) ? max : (x < min ? min : x); });
}

template <typename T>
void RealMatrix<T>::Inverse() {
    GaussJordanElimination(*this);
}

template class RealMatrix<float>;
template class RealMatrix<double>;

namespace {

/// A copy of m with each element x replaced by map(x).
template <typename M, typename Map>
M Mapped(M m, Map map) {
    for (unsigned int i = 0; i < m.GetNumRows(); ++i)
        for (auto& element : m[i]) element = map(element);
    return m;
}

template <typename To, typename From>
void Convert(Matrix<From> const& source, Matrix<To>& destination) {
    destination = Matrix<To>(source.GetNumRows(), source.GetNumColumns(), To(0));
    for (unsigned int i = 0; i < source.GetNumRows(); ++i)
        for (unsigned int j = 0; j < source.GetNumColumns(); ++j) destination[i][j] = static_cast<To>(source[i][j]);
}

template <typename M, typename T>
M RandomMatrix(unsigned int rows, unsigned int columns, T min, T max) {
    M m(rows, columns, T(0));
    m.Random(min, max);
    return m;
}

}  // namespace

MatrixFloat Abs(MatrixFloat const& m) {
    return Mapped(m, [](float x) { return std::abs(x); });
}

MatrixDouble Abs(MatrixDouble const& m) {
    return Mapped(m, [](double x) { return std::abs(x); });
}

MatrixFloat Sin(MatrixFloat const& m) {
    return Mapped(m, [](float x) { return std::sin(x); });
}

MatrixDouble Sin(MatrixDouble const& m) {
    return Mapped(m, [](double x) { return std::sin(x); });
}

MatrixFloat Cos(MatrixFloat const& m) {
    return Mapped(m, [](float x) { return std::cos(x); });
}

MatrixDouble Cos(MatrixDouble const& m) {
    return Mapped(m, [](double x) { return std::cos(x); });
}

MatrixFloat Random(unsigned int rows, unsigned int columns, float min, float max) {
    return RandomMatrix<MatrixFloat>(rows, columns, min, max);
}

MatrixDouble Random(unsigned int rows, unsigned int columns, double min, double max) {
    return RandomMatrix<MatrixDouble>(rows, columns, min, max);
}

MatrixFloat Inverse(MatrixFloat const& m) {
    MatrixFloat result = m;
    result.Inverse();
    return result;
}

MatrixDouble Inverse(MatrixDouble const& m) {
    MatrixDouble result = m;
    result.Inverse();
    return result;
}

void FloatToDouble(Matrix<float> const& source, Matrix<double>& destination) {
    Convert(source, destination);
}

void DoubleToFloat(Matrix<double> const& source, Matrix<float>& destination) {
    Convert(source, destination);
}

}  // namespace orvandsp
