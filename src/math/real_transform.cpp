#include "math/real_transform.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <numbers>
#include <utility>

namespace orvandsp {

namespace {

using Complex = std::complex<double>;

/// The product of the standard library looks for infinities.
Complex Product(Complex a, Complex b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

}  // namespace

RealTransform::RealTransform(std::size_t newSize) : size(newSize), twiddles(size / 2), order(size / 2, 0) {
    assert(std::has_single_bit(size) && size >= 4);
    for (std::size_t k = 0; k < twiddles.size(); ++k)
        twiddles[k] = std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(size));
    for (std::size_t i = 1; i < order.size(); ++i) order[i] = order[i / 2] / 2 + (i % 2) * order.size() / 2;
}

void RealTransform::TransformHalf(Spectrum& values) const {
    for (std::size_t i = 0; i < values.size(); ++i)
        if (i < order[i]) std::swap(values[i], values[order[i]]);
    for (std::size_t span = 1; span < values.size(); span *= 2)
        for (std::size_t group = 0; group < values.size(); group += 2 * span)
            for (std::size_t j = 0; j < span; ++j) {
                Complex& upper = values[group + j];
                Complex& lower = values[group + j + span];
                const Complex term = Product(twiddles[j * (twiddles.size() / span)], lower);
                lower = upper - term;
                upper += term;
            }
}

Spectrum RealTransform::Forward(std::span<double const> signal) const {
    assert(signal.size() <= size);
    // Even samples as real parts, odd ones as imaginary parts; then the two are told apart by their symmetries.
    Spectrum half(size / 2);
    for (std::size_t n = 0; n < signal.size(); n += 2)
        half[n / 2] = {signal[n], n + 1 < signal.size() ? signal[n + 1] : 0.0};
    TransformHalf(half);
    Spectrum spectrum(NumBins());
    for (std::size_t k = 0; k < half.size(); ++k) {
        const Complex here = half[k], there = std::conj(half[(half.size() - k) % half.size()]);
        const Complex even = 0.5 * (here + there), odd = Product({0.0, -0.5}, here - there);
        spectrum[k] = even + Product(twiddles[k], odd);
        if (k == 0) spectrum.back() = even - odd;
    }
    return spectrum;
}

std::vector<double> RealTransform::Inverse(Spectrum const& spectrum) const {
    Spectrum half(size / 2);
    for (std::size_t k = 0; k < half.size(); ++k) {
        const Complex here = spectrum[k], there = std::conj(spectrum[half.size() - k]);
        const Complex even = here + there, odd = Product(std::conj(twiddles[k]), here - there);
        half[k] = std::conj(even + Product({0.0, 1.0}, odd));  // the inverse by way of the conjugates
    }
    TransformHalf(half);
    std::vector<double> signal(size);
    for (std::size_t n = 0; n < half.size(); ++n) {
        signal[2 * n] = half[n].real() / static_cast<double>(size);
        signal[2 * n + 1] = -half[n].imag() / static_cast<double>(size);
    }
    return signal;
}

Spectrum RealTransform::Delayed(Spectrum spectrum, double samples) const {
    for (std::size_t k = 0; k < spectrum.size(); ++k)
        spectrum[k] *=
            std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(k) * samples / static_cast<double>(size));
    return spectrum;
}

Spectrum RealTransform::MinimumPhase(std::vector<double> const& magnitude) const {
    Spectrum logarithm(magnitude.size());
    std::transform(magnitude.begin(), magnitude.end(), logarithm.begin(), [](double value) { return std::log(value); });
    std::vector<double> cepstrum = Inverse(logarithm);
    for (std::size_t n = 1; n < size / 2; ++n) {
        cepstrum[n] *= 2.0;
        cepstrum[size - n] = 0.0;
    }
    Spectrum spectrum = Forward(cepstrum);
    for (Complex& value : spectrum) value = std::exp(value);
    return spectrum;
}

}  // namespace orvandsp
