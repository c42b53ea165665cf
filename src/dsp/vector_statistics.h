#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <functional>
#include <limits>

/// Figures over arrays of n samples, in single and in double precision.
///
/// Sums run from the first sample to the last, in the type of the samples. Means over no sample are not a number.
namespace orvandsp {

/// The largest sample and where it first stands; minus infinity at 0 of none.
template <std::floating_point T>
T GetMaximumValueWithIndex(T const* in, unsigned long n, unsigned long& index) {
    T maximum = -std::numeric_limits<T>::infinity();
    index = 0;
    for (unsigned long i = 0; i < n; ++i) {
        if (in[i] > maximum) {
            maximum = in[i];
            index = i;
        }
    }
    return maximum;
}

/// Minus infinity of no sample.
template <std::floating_point T>
T GetMaximumValue(T const* in, unsigned long n) {
    unsigned long index;
    return GetMaximumValueWithIndex(in, n, index);
}

/// Plus infinity of no sample.
template <std::floating_point T>
T GetMinimumValue(T const* in, unsigned long n) {
    T minimum = std::numeric_limits<T>::infinity();
    for (unsigned long i = 0; i < n; ++i) minimum = std::min(minimum, in[i]);
    return minimum;
}

template <std::floating_point T>
T MeanValue(T const* in, unsigned long n) {
    T sum = 0;
    for (unsigned long i = 0; i < n; ++i) sum += in[i];
    return sum / static_cast<T>(n);
}

/// The mean of the absolute values.
template <std::floating_point T>
T MeanMagnitude(T const* in, unsigned long n) {
    T sum = 0;
    for (unsigned long i = 0; i < n; ++i) sum += std::abs(in[i]);
    return sum / static_cast<T>(n);
}

/// The sum of a[i] b[i].
template <std::floating_point T>
T DotProd(T const* a, T const* b, unsigned long n) {
    T sum = 0;
    for (unsigned long i = 0; i < n; ++i) sum += a[i] * b[i];
    return sum;
}

/// The sum of the squares.
template <std::floating_point T>
T SquareNorm(T const* in, unsigned long n) {
    return DotProd(in, in, n);
}

/// The Euclidean length.
template <std::floating_point T>
T Norm(T const* in, unsigned long n) {
    return std::sqrt(SquareNorm(in, n));
}

template <std::floating_point T>
T RootMeanSquare(T const* in, unsigned long n) {
    return std::sqrt(SquareNorm(in, n) / static_cast<T>(n));
}

/// The mean of (a - mean of a)(b - mean of b): the covariance of the population, divided by n. Computed in two passes,
/// so that a large common offset costs no digits.
template <std::floating_point T>
T Covariance(T const* a, T const* b, unsigned long n) {
    const T meanA = MeanValue(a, n);
    const T meanB = MeanValue(b, n);
    T sum = 0;
    for (unsigned long i = 0; i < n; ++i) sum += (a[i] - meanA) * (b[i] - meanB);
    return sum / static_cast<T>(n);
}

/// Of the population, divided by n.
template <std::floating_point T>
T Variance(T const* in, unsigned long n) {
    return Covariance(in, in, n);
}

/// Of the population.
template <std::floating_point T>
T StandardDeviation(T const* in, unsigned long n) {
    return std::sqrt(Variance(in, n));
}

/// The straight line slope x + intercept with the smallest sum of squared distances in y. Not a number when all x are
/// one value.
template <std::floating_point T>
void LinearRegression(T& slope, T& intercept, T const* x, T const* y, unsigned long n) {
    slope = Covariance(x, y, n) / Variance(x, n);
    intercept = MeanValue(y, n) - slope * MeanValue(x, n);
}

/// In place. The samples must be numbers.
template <std::floating_point T>
void SortByIncreasingValues(T* data, unsigned long n) {
    std::sort(data, data + n);
}

/// In place. The samples must be numbers.
template <std::floating_point T>
void SortByDecreasingValues(T* data, unsigned long n) {
    std::sort(data, data + n, std::greater<T>());
}

/// Normally distributed samples from the C library's rand(), so that srand() makes them repeatable.
///
/// After G. E. P. Box and M. E. Muller, "A note on the generation of random normal deviates", Ann. Math. Statist.
/// 29(2), 1958.
void NormalRandomDistribution(float* out, float mean, float standardDeviation, unsigned long n);
void NormalRandomDistribution(double* out, double mean, double standardDeviation, unsigned long n);

}  // namespace orvandsp
