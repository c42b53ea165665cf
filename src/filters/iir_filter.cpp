#include "filters/iir_filter.h"

#include <algorithm>

#include "dsp/denormals.h"

namespace Lume {

IIRFilter::IIRFilter(unsigned int newOrder) {
    IIRFilter::SetOrder(newOrder);
    denominator[0] = 1.0f;
}

void IIRFilter::Clear() {
    std::fill(state.begin(), state.end(), 0.0f);
    std::fill(pastOutputs.begin(), pastOutputs.end(), 0.0f);
}

void IIRFilter::Process(float* output, float* input, unsigned long numSamples) {
    orvandsp::FlushDenormals();
    float* const xs = state.data();
    float* const ys = pastOutputs.data();
    for (unsigned long i = 0; i < numSamples; ++i) {
        const float x = input[i];
        float y = numerator[0] * x;
        // The oldest products first, each pair as one difference.
        for (unsigned int k = order; k >= 1; --k) y += numerator[k] * xs[k - 1] - denominator[k] * ys[k - 1];
        if (order > 0) {
            std::copy_backward(xs, xs + order - 1, xs + order);
            std::copy_backward(ys, ys + order - 1, ys + order);
            xs[0] = x;
            ys[0] = y;
        }
        output[i] = y;
    }
}

void IIRFilter::SetCoefficients(float* set) {
    SetNumerator(set);
    SetDenominator(set + numerator.size());
}

void IIRFilter::SetOrder(unsigned int newOrder) {
    order = newOrder;
    state.resize(order);
    pastOutputs.resize(order);
    denominator.resize(std::size_t{order} + 1);
    numerator.resize(std::size_t{order} + 1);
}

void IIRFilter::ClearTaps() {
    std::fill(numerator.begin(), numerator.end(), 0.0f);
    std::fill(denominator.begin(), denominator.end(), 0.0f);
    denominator[0] = 1.0f;
}

}  // namespace Lume
