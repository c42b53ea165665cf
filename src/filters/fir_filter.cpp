#include "filters/fir_filter.h"

#include <algorithm>
#include <bit>

#include "filters/direct_convolution.h"

namespace Lume {

FIRFilter::FIRFilter(unsigned int newOrder, FIRImplementation newImplementation) : implementation(newImplementation) {
    order = newOrder;
    resize();
}

void FIRFilter::SetImplementationMethod(FIRImplementation newImplementation) {
    implementation = newImplementation;
    resize();
    Clear();
}

void FIRFilter::SetMaxBlockSize(unsigned int blockSize) {
    if (implementation != fftconvolution) {
        buffersize = 0;
        return;
    }
    if (blockSize == buffersize) return;
    buffersize = blockSize;
    initializeFFT();
    computeFFTTaps();
}

void FIRFilter::Clear() {
    std::fill(state.begin(), state.end(), 0.0f);
    if (implementation == fftconvolution) convolution.Clear();
}

void FIRFilter::Process(float* output, float* input, unsigned long numSamples) {
    if (implementation != fftconvolution) {
        ConvolveDirectly(output, input, numSamples, coefficients, state);
        return;
    }
    if (numSamples == 0) return;
    if (!std::has_single_bit(numSamples)) {
        convolution.Drain(output, numSamples);
        return;
    }
    if (numSamples != buffersize) SetMaxBlockSize(static_cast<unsigned int>(numSamples));
    if (tapsChanged) computeFFTTaps();
    convolution.Process(output, input);
}

void FIRFilter::SetCoefficients(float* taps) {
    std::copy_n(taps, coefficients.size(), coefficients.begin());
    tapsChanged = true;
}

void FIRFilter::SetState(Filter const& other) {
    if (implementation == fftconvolution)
        Clear();
    else
        state = static_cast<FIRFilter const&>(other).state;
}

void FIRFilter::SetOrder(unsigned int newOrder) {
    order = newOrder;
    resize();
}

void FIRFilter::ClearTaps() {
    std::fill(coefficients.begin(), coefficients.end(), 0.0f);
    tapsChanged = true;
}

void FIRFilter::GetCoefficients(std::vector<float>& result) const {
    std::copy(coefficients.begin(), coefficients.end(), result.begin());
}

void FIRFilter::resize() {
    coefficients.resize(std::size_t{order} + 1);
    state.resize(std::size_t{order} + 1);
    if (implementation != fftconvolution) return;
    initializeFFT();
    computeFFTTaps();
}

void FIRFilter::initializeFFT() {
    // A filter that was in direct form has no block size yet; the first block brings it.
    convolution.SetSize(coefficients.size(), std::max(buffersize, 1u));
}

void FIRFilter::computeFFTTaps() {
    convolution.SetTaps(coefficients.data());
    tapsChanged = false;
}

}  // namespace Lume
