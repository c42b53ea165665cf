#pragma once

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace orvandsp {

/// A real signal's spectrum from 0 Hz to half the sample rate, both included.
using Spectrum = std::vector<std::complex<double>>;

/// Fourier transform of real signals in double precision, by a complex one of half the size: accurate to the last
/// digits, for designs and measurements. Not for the audio thread: the results are vectors.
class RealTransform {
public:
    /// @param size  samples, a power of two from 4 on
    explicit RealTransform(std::size_t size);

    std::size_t Size() const { return size; }
    std::size_t NumBins() const { return size / 2 + 1; }
    double FrequencyOf(std::size_t bin, double samplerate) const {
        return static_cast<double>(bin) * samplerate / static_cast<double>(size);
    }

    /// X[k] = sum x[n] exp(-2 pi j k n / size), with zeros behind a signal that is shorter.
    Spectrum Forward(std::span<double const> signal) const;
    /// The signal of a spectrum, all `size` samples of it.
    std::vector<double> Inverse(Spectrum const& spectrum) const;

    /// A spectrum so many samples later, or earlier below 0; also by parts of a sample.
    Spectrum Delayed(Spectrum spectrum, double samples) const;
    /// The spectrum with a magnitude and the least phase that it can have, by way of the cepstrum (Oppenheim and
    /// Schafer, "Digital Signal Processing", 1975).
    /// @param magnitude  above 0, one per bin
    Spectrum MinimumPhase(std::vector<double> const& magnitude) const;

private:
    void TransformHalf(Spectrum& values) const;

    std::size_t size;
    Spectrum twiddles;               // exp(-2 pi j k / size), k below half the size
    std::vector<std::size_t> order;  // bit-reversed
};

}  // namespace orvandsp
