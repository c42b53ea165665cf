#include "filters/partitioned_convolution.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace Lume {

namespace {

/// sum += a * b for complex numbers with the real parts before the imaginary ones.
void MultiplyAdd(float* __restrict sum, float const* __restrict a, float const* __restrict b,
                 std::size_t count) noexcept {
    for (std::size_t k = 0; k < count; ++k) {
        sum[k] += a[k] * b[k] - a[count + k] * b[count + k];
        sum[count + k] += a[k] * b[count + k] + a[count + k] * b[k];
    }
}

}  // namespace

void PartitionedConvolution::SetSize(std::size_t newNumTaps, std::size_t newBlockSize) {
    numTaps = newNumTaps;
    blockSize = newBlockSize;
    partSize = std::min(numTaps, blockSize);
    numParts = (numTaps + partSize - 1) / partSize;
    const std::size_t numPlaces = std::max(std::bit_ceil(blockSize + partSize - 1), std::size_t{2});
    numBins = numPlaces / 2;

    // Halving at every stage forward limits the growth of the numbers; the last stage gives the level back.
    const auto size = static_cast<float>(numBins);
    transform = orvandsp::FFT<float>(static_cast<unsigned int>(numBins), 0.5f, size, 1.0f, 1.0f / size);
    weights.resize(numBins);
    for (std::size_t n = 0; n < numBins; ++n)
        weights[n] = std::polar(1.0, std::numbers::pi * static_cast<double>(n) / static_cast<double>(numPlaces));
    work.resize(numBins);
    sum.resize(numPlaces);
    samples.resize(numPlaces);
    tapSpectra.assign(numParts * numPlaces, 0.0f);
    pastSpectra.resize(numParts * numPlaces);
    accumulator.resize(numParts * blockSize + numPlaces);
    Clear();
}

void PartitionedConvolution::SetTaps(float const* taps) noexcept {
    Settle();
    for (std::size_t part = 0; part < numParts; ++part) {
        const std::size_t first = part * partSize;
        float* const spectrum = &tapSpectra[part * 2 * numBins];
        Transform(taps + first, std::min(partSize, numTaps - first), spectrum, spectrum + numBins);
    }
}

void PartitionedConvolution::Process(float* output, float const* input) noexcept {
    newest = AgeToSlot(numParts - 1);  // the oldest one makes room
    float* const spectrum = &pastSpectra[newest * 2 * numBins];
    Transform(input, blockSize, spectrum, spectrum + numBins);
    numPastBlocks = std::min(numPastBlocks + 1, numParts);
    SumProducts(0);
    InverseTransformAndAdd(0);
    Output(output, blockSize);
}

void PartitionedConvolution::Drain(float* output, std::size_t numSamples) noexcept {
    Settle();
    Output(output, numSamples);
}

void PartitionedConvolution::Clear() noexcept {
    std::fill(pastSpectra.begin(), pastSpectra.end(), 0.0f);
    std::fill(accumulator.begin(), accumulator.end(), 0.0f);
    newest = 0;
    numPastBlocks = 0;
    readPosition = 0;
}

void PartitionedConvolution::Transform(float const* in, std::size_t count, float* real, float* imag) noexcept {
    // The second half of the places stands in the imaginary parts.
    for (std::size_t n = 0; n < numBins; ++n) {
        const float first = n < count ? in[n] : 0.0f;
        const float second = n + numBins < count ? in[n + numBins] : 0.0f;
        work[n] = {first * weights[n].real() - second * weights[n].imag(),
                   first * weights[n].imag() + second * weights[n].real()};
    }
    transform.process(work.data(), orvandsp::FFT<float>::forward);
    for (std::size_t k = 0; k < numBins; ++k) {
        real[k] = work[k].real();
        imag[k] = work[k].imag();
    }
}

/// Turns the sum of products into samples and adds them to the output that begins `offset` samples from now.
void PartitionedConvolution::InverseTransformAndAdd(std::size_t offset) noexcept {
    for (std::size_t k = 0; k < numBins; ++k) work[k] = {sum[k], sum[numBins + k]};
    transform.process(work.data(), orvandsp::FFT<float>::inverse);
    for (std::size_t n = 0; n < numBins; ++n) {
        samples[n] = work[n].real() * weights[n].real() + work[n].imag() * weights[n].imag();
        samples[n + numBins] = work[n].imag() * weights[n].real() - work[n].real() * weights[n].imag();
    }
    // The ring is longer than one convolution: it wraps once at most.
    const std::size_t position = (readPosition + offset) % accumulator.size();
    const std::size_t beforeWrap = std::min(accumulator.size() - position, samples.size());
    for (std::size_t n = 0; n < beforeWrap; ++n) accumulator[position + n] += samples[n];
    for (std::size_t n = beforeWrap; n < samples.size(); ++n) accumulator[n - beforeWrap] += samples[n];
}

/// The spectrum of the block that follows `firstPart` blocks after the newest one, as far as it is known now.
void PartitionedConvolution::SumProducts(std::size_t firstPart) noexcept {
    std::fill(sum.begin(), sum.end(), 0.0f);
    for (std::size_t part = firstPart; part < numParts; ++part)
        MultiplyAdd(sum.data(), &pastSpectra[AgeToSlot(part - firstPart) * 2 * numBins],
                    &tapSpectra[part * 2 * numBins], numBins);
}

/// Moves what past blocks still owe from their spectra into the accumulator.
void PartitionedConvolution::Settle() noexcept {
    if (numPastBlocks == 0) return;
    for (std::size_t part = 1; part < numParts; ++part) {
        SumProducts(part);
        InverseTransformAndAdd((part - 1) * blockSize);
    }
    std::fill(pastSpectra.begin(), pastSpectra.end(), 0.0f);
    numPastBlocks = 0;
}

void PartitionedConvolution::Output(float* output, std::size_t numSamples) noexcept {
    while (numSamples > 0) {
        float* const owed = &accumulator[readPosition];
        const std::size_t count = std::min(accumulator.size() - readPosition, numSamples);
        std::copy_n(owed, count, output);
        std::fill_n(owed, count, 0.0f);
        output += count;
        numSamples -= count;
        readPosition = (readPosition + count) % accumulator.size();
    }
}

}  // namespace Lume
