#pragma once

#include <complex>
#include <vector>

#include "dsp/bit_reversal.h"

namespace orvandsp {

/// Complex fast Fourier transform of a power-of-two size, in place: X[k] = scale * sum x[n] exp(-+2 pi j k n / size),
/// with the minus sign forward and the plus sign inverse.
///
/// Radix 2 with the twiddles in bit-reversed order, so that each group of butterflies has one twiddle and its inner
/// loop runs over neighbours (Cooley and Tukey, "An algorithm for the machine calculation of complex Fourier series",
/// Math. Comp. 19, 1965). Each direction has a scale for every stage and one more for the last: a net gain of
/// stage^stages * final. A forward stage scale of one half keeps the numbers from growing.
/// @tparam T  float; there is no other instance
template <typename T>
class FFT {
public:
    enum FftTransform : int { forward = 0, inverse = 1 };

    /// @param size  1, or a power of two from 2 to 2^19
    /// @throws OrvanDspException for another size
    FFT(unsigned int size, T forwardStageScale, T forwardFinalScale, T inverseStageScale, T inverseFinalScale);

    /// Transforms `size` values. Real-time safe.
    void process(std::complex<T>* data, FftTransform direction) const noexcept;

    unsigned int GetSize() const noexcept { return size; }

private:
    unsigned int size;
    unsigned int stages = 0;                // log2(size)
    std::vector<std::complex<T>> twiddles;  // exp(-j pi k / (size / 2)), in bit-reversed order
    BitReversal bitReversal;
    T forwardStageScale;
    T forwardFinalScale;
    T inverseStageScale;
    T inverseFinalScale;
};

extern template class FFT<float>;

/// Element-wise complex product of two spectra.
/// @param a, b    b is at least as long as a
/// @param result  resized to the length of a; may be a or b
template <typename T, typename U>
void Multiply(std::vector<std::complex<T>> const& a, std::vector<std::complex<U>> const& b,
              std::vector<std::complex<T>>& result) {
    result.resize(a.size());
    for (std::size_t k = 0; k < a.size(); ++k) {
        // Written out: the product of the standard library looks for infinities in each element.
        const T real = a[k].real() * b[k].real() - a[k].imag() * b[k].imag();
        const T imaginary = a[k].real() * b[k].imag() + a[k].imag() * b[k].real();
        result[k] = {real, imaginary};
    }
}

}  // namespace orvandsp
