#pragma once

#include <complex>
#include <vector>

#include "math/fft.h"

namespace Lume {

/// Convolution of blocks of one length with a finite impulse response, by FFT and without latency: the output of a
/// block starts with its own convolution.
///
/// The impulse response is cut into parts as long as a block. The spectra of past blocks are kept, each is multiplied
/// with the part that its age falls on, and one inverse transform per block serves the sum of all (Stockham,
/// "High-speed convolution and correlation", 1966, in the partitioned form of Kulp, "Digital equalization using Fourier
/// transform techniques", AES 85th Convention, 1988). For 512 taps and blocks of 64 this is several times faster than
/// one transform over everything.
///
/// Real signals pay half: a linear convolution that fits in N places is a product of polynomials modulo z^N + 1, of
/// which real ones need the half modulo z^(N / 2) - j alone. That is a cyclic convolution of complex sequences of
/// length N / 2, x[n] + j x[n + N / 2] times exp(j pi n / N), and the spectra are multiplied without any unpacking.
class PartitionedConvolution {
public:
    PartitionedConvolution() { SetSize(1, 1); }

    /// Makes room and returns to silence, with all taps 0; allocates.
    /// @param numTaps    at least 1
    /// @param blockSize  length of each block [samples], at least 1
    void SetSize(std::size_t numTaps, std::size_t blockSize);

    /// Takes over the taps. What past blocks still owe keeps the old ones. Real-time safe.
    /// @param taps  as many as SetSize was told
    void SetTaps(float const* taps) noexcept;

    /// Filters one block of the length that SetSize was told; output may be input. Real-time safe.
    void Process(float* output, float const* input) noexcept;

    /// Outputs what past blocks still owe, then zeros. Real-time safe.
    /// @param numSamples  any number
    void Drain(float* output, std::size_t numSamples) noexcept;

    /// Returns to silence and keeps the taps.
    void Clear() noexcept;

private:
    void Transform(float const* samples, std::size_t count, float* real, float* imag) noexcept;
    void InverseTransformAndAdd(std::size_t offset) noexcept;
    void SumProducts(std::size_t firstPart) noexcept;
    void Settle() noexcept;
    void Output(float* output, std::size_t numSamples) noexcept;

    std::size_t AgeToSlot(std::size_t age) const noexcept { return (newest + age) % numParts; }

    std::size_t numTaps = 0;
    std::size_t blockSize = 0;
    std::size_t partSize = 0;  // taps per part [samples]
    std::size_t numParts = 0;
    std::size_t numBins = 0;  // complex bins of a spectrum: half the places of a convolution

    orvandsp::FFT<float> transform{1, 1.0f, 1.0f, 1.0f, 1.0f};
    std::vector<std::complex<float>> weights;  // exp(j pi n / (2 numBins))
    std::vector<std::complex<float>> work;     // one spectrum in the transform's layout

    // Spectra with all real parts before all imaginary ones; several of them in a row.
    std::vector<float> tapSpectra;   // one per part
    std::vector<float> pastSpectra;  // a ring, one per part
    std::vector<float> sum;          // one
    std::vector<float> samples;      // the places of one convolution
    std::size_t newest = 0;          // slot of the last block's spectrum
    std::size_t numPastBlocks = 0;   // blocks since silence, as far as they matter
    std::vector<float> accumulator;  // a ring of samples to be output
    std::size_t readPosition = 0;
};

}  // namespace Lume
