#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <type_traits>

/// Element-wise operations on arrays of n samples, in single and in double precision.
///
/// Outputs come first. An output may be the same array as an input, but may not overlap it otherwise. Nothing
/// allocates. Each element is computed by itself, with exactly the operations that the comment writes down.
namespace orvandsp {

/// A scalar beside arrays of T; converted to T instead of taking part in its deduction.
template <std::floating_point T>
using ScalarOf = std::type_identity_t<T>;

/// out = in
template <std::floating_point T>
void Copy(T* out, T const* in, unsigned long n) {
    std::copy_n(in, n, out);
}

/// out = (a + b) s
template <std::floating_point T>
void SumMul(T* out, T const* a, T const* b, ScalarOf<T> s, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = (a[i] + b[i]) * s;
}

/// out = (a - b) s
template <std::floating_point T>
void DiffMul(T* out, T const* a, T const* b, ScalarOf<T> s, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = (a[i] - b[i]) * s;
}

/// out1 = (a + b) s, out2 = (a - b) s
template <std::floating_point T>
void SumDiffMul(T* out1, T* out2, T const* a, T const* b, ScalarOf<T> s, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) {
        const T sum = a[i] + b[i];
        const T difference = a[i] - b[i];
        out1[i] = sum * s;
        out2[i] = difference * s;
    }
}

/// In place: a = (a + b) s, b = (a - b) s
template <std::floating_point T>
void SumDiffMul(T* a, T* b, ScalarOf<T> s, unsigned long n) {
    SumDiffMul(a, b, a, b, s, n);
}

/// out1 = a + b, out2 = a - b
template <std::floating_point T>
void SumDiff(T* out1, T* out2, T const* a, T const* b, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) {
        const T sum = a[i] + b[i];
        const T difference = a[i] - b[i];
        out1[i] = sum;
        out2[i] = difference;
    }
}

/// In place: a = a + b, b = a - b
template <std::floating_point T>
void SumDiff(T* a, T* b, unsigned long n) {
    SumDiff(a, b, a, b, n);
}

/// Fades from a to b: out = (1 - r) a + r b, where r = g0 + i (g1 - g0) / (n - 1) runs from g0 at the first sample to
/// g1 at the last one. A single sample is mixed with g0.
template <std::floating_point T>
void CrossFade(T* out, T const* a, T const* b, ScalarOf<T> g0, ScalarOf<T> g1, unsigned long n) {
    const T step = n < 2 ? T{0} : (g1 - g0) / static_cast<T>(n - 1);
    for (unsigned long i = 0; i < n; ++i) {
        const T r = g0 + static_cast<T>(i) * step;
        out[i] = (T{1} - r) * a[i] + r * b[i];
    }
}

/// As CrossFade, but added to what out holds.
template <std::floating_point T>
void CrossFadeAdd(T* out, T const* a, T const* b, ScalarOf<T> g0, ScalarOf<T> g1, unsigned long n) {
    const T step = n < 2 ? T{0} : (g1 - g0) / static_cast<T>(n - 1);
    for (unsigned long i = 0; i < n; ++i) {
        const T r = g0 + static_cast<T>(i) * step;
        out[i] += (T{1} - r) * a[i] + r * b[i];
    }
}

/// Raises what lies below the threshold to it.
template <std::floating_point T>
void Smax(T* out, T const* in, ScalarOf<T> threshold, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = in[i] < threshold ? threshold : in[i];
}

template <std::floating_point T>
void Smax(T* data, ScalarOf<T> threshold, unsigned long n) {
    Smax(data, data, threshold, n);
}

/// Amplitudes to decibels: out = 20 log10(in)
template <std::floating_point T>
void Lin2dB(T* out, T const* in, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = T{20} * std::log10(in[i]);
}

/// Powers to decibels: out = 10 log10(in)
template <std::floating_point T>
void Lin2powdB(T* out, T const* in, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = T{10} * std::log10(in[i]);
}

/// In place.
template <std::floating_point T>
void Sqrt(T* data, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) data[i] = std::sqrt(data[i]);
}

template <std::floating_point T>
void Exp(T* out, T const* in, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = std::exp(in[i]);
}

/// The natural logarithm.
template <std::floating_point T>
void Log(T* out, T const* in, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = std::log(in[i]);
}

/// Of angles in radians.
template <std::floating_point T>
void Sin(T* out, T const* in, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = std::sin(in[i]);
}

/// Of angles in radians.
template <std::floating_point T>
void Cos(T* out, T const* in, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = std::cos(in[i]);
}

inline void SingleToDouble(double* out, float const* in, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = static_cast<double>(in[i]);
}

/// Rounds to the nearest float.
inline void DoubleToSingle(float* out, double const* in, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = static_cast<float>(in[i]);
}

/// One array per channel into frames: out[i numChannels + c] = in[c][i]. The arrays must not overlap.
/// @param n  samples of each channel
template <std::floating_point T>
void InterleaveSamples(T* out, T const* const* in, unsigned int numChannels, unsigned long n) {
    for (unsigned int c = 0; c < numChannels; ++c)
        for (unsigned long i = 0; i < n; ++i) out[i * numChannels + c] = in[c][i];
}

/// Frames into one array per channel: out[c][i] = in[i numChannels + c]. The arrays must not overlap.
/// @param n  samples of each channel
template <std::floating_point T>
void DeinterleaveSamples(T* const* out, T const* in, unsigned int numChannels, unsigned long n) {
    for (unsigned int c = 0; c < numChannels; ++c)
        for (unsigned long i = 0; i < n; ++i) out[c][i] = in[i * numChannels + c];
}

}  // namespace orvandsp
