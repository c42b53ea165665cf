#include "math/fft.h"

#include <bit>
#include <cmath>

#include "dsp/orvan_dsp_exception.h"

namespace orvandsp {

namespace {

constexpr unsigned int MaxSize = 1u << 19;

unsigned int CheckedSize(unsigned int size) {
    if (!std::has_single_bit(size) || size > MaxSize)
        throw OrvanDspException("FFT: size not power of 2", __FILE__, __LINE__);
    return size;
}

/// Complex numbers as pairs of reals, which the standard guarantees: in pairs the compiler sees plain arithmetic.
template <typename T>
T* AsPairs(std::complex<T>* data) noexcept {
    return reinterpret_cast<T*>(data);
}

/// (upper, lower) becomes ((upper + w lower) s, (upper - w lower) s) for `span` neighbours.
template <typename T>
void Butterflies(std::complex<T>* upper, std::complex<T>* lower, unsigned int span, T wReal, T wImag, T s) noexcept {
    T* const __restrict a = AsPairs(upper);
    T* const __restrict b = AsPairs(lower);
    for (unsigned int j = 0; j < 2 * span; j += 2) {
        const T bReal = wReal * b[j] - wImag * b[j + 1];
        const T bImag = wReal * b[j + 1] + wImag * b[j];
        const T aReal = a[j];
        const T aImag = a[j + 1];
        a[j] = (aReal + bReal) * s;
        a[j + 1] = (aImag + bImag) * s;
        b[j] = (aReal - bReal) * s;
        b[j + 1] = (aImag - bImag) * s;
    }
}

}  // namespace

template <typename T>
FFT<T>::FFT(unsigned int newSize, T newForwardStageScale, T newForwardFinalScale, T newInverseStageScale,
            T newInverseFinalScale)
    : size(CheckedSize(newSize)),
      twiddles(size / 2),
      bitReversal(size),
      forwardStageScale(newForwardStageScale),
      forwardFinalScale(newForwardFinalScale),
      inverseStageScale(newInverseStageScale),
      inverseFinalScale(newInverseFinalScale) {
    while ((1u << stages) < size) ++stages;
    std::vector<unsigned int> table(size);
    bitReversal.GetBitReverseTable(table.data());
    const unsigned int half = size / 2;
    for (unsigned int k = 0; k < half; ++k) {
        const T angle = static_cast<T>(table[2 * k]) * T(3.1415927f) * (T(1) / static_cast<T>(half));
        twiddles[k] = {std::cos(angle), -std::sin(angle)};
    }
}

template <typename T>
void FFT<T>::process(std::complex<T>* data, FftTransform direction) const noexcept {
    const bool isForward = direction == forward;
    T s = isForward ? forwardStageScale : inverseStageScale;
    const T f = isForward ? forwardFinalScale : inverseFinalScale;
    if (stages == 0) {
        data[0] *= f;
        return;
    }

    if (stages == 1) s *= f;
    // The first stage has the twiddle 1.
    T* const __restrict a = AsPairs(data);
    T* const __restrict b = a + size;
    for (unsigned int j = 0; j < size; ++j) {
        const T upper = a[j];
        const T lower = b[j];
        a[j] = (upper + lower) * s;
        b[j] = (upper - lower) * s;
    }
    for (unsigned int span = size / 4; span >= 1; span /= 2) {
        if (span == 1) s *= f;
        for (unsigned int group = 0; group < size / (2 * span); ++group) {
            std::complex<T>* const upper = data + 2 * span * group;
            const T wImag = twiddles[group].imag();
            Butterflies(upper, upper + span, span, twiddles[group].real(), isForward ? wImag : -wImag, s);
        }
    }
    bitReversal.Reorder(data, size);
}

template class FFT<float>;

}  // namespace orvandsp
