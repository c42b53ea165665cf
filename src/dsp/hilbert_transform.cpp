#include "dsp/hilbert_transform.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "dsp/denormals.h"

namespace orvandsp {

namespace {

// Corner frequencies of the sections [units of 15 Hz].
constexpr float corners[] = {
    0.3609f, 2.7412f, 11.1573f, 44.7581f, 179.6242f, 798.4578f,   // output 0
    1.2524f, 5.5671f, 22.3423f, 89.6271f, 364.7914f, 2770.1113f,  // output 1
};
constexpr float fifteenHzTimesPi = 47.12389f;

float Chain(float sample, float const* coefficients, float* states, unsigned int numSections) {
    for (unsigned int i = 0; i < numSections; ++i) {
        const float w = sample - coefficients[i] * states[i];
        sample = coefficients[i] * w + states[i];
        states[i] = w;
    }
    return sample;
}

}  // namespace

HilbertTransform::HilbertTransform() {
    numInputs = 1;
    numOutputs = 2;
    ComputeCoefficients();
}

void HilbertTransform::ComputeCoefficients() {
    const float perCorner = fifteenHzTimesPi / samplerate;
    for (unsigned int i = 0; i < numSections; ++i) {
        const float k = perCorner * corners[i];
        coefficients[i] = (k - 1.0f) / (k + 1.0f);
    }
}

void HilbertTransform::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    ComputeCoefficients();
}

void HilbertTransform::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    FlushDenormals();
    if (activeInputs[0] == 0) {
        std::fill_n(outputs[0], numSamples, 0.0f);
        std::fill_n(outputs[1], numSamples, 0.0f);
        return;
    }
    for (unsigned long n = 0; n < numSamples; ++n) {
        const float sample = inputs[0][n];  // before the outputs, which may be its array
        outputs[0][n] = Chain(sample, coefficients, states, sectionsPerChain);
        outputs[1][n] = Chain(sample, coefficients + sectionsPerChain, states + sectionsPerChain, sectionsPerChain);
    }
    // An allpass never forgets a not a number or an overflow by itself; written so that not a number is dropped too.
    for (float& state : states) {
        const float magnitude = std::abs(state);
        if (!(magnitude > 1e-15f && magnitude < 1e15f)) state = 0.0f;
    }
}

}  // namespace orvandsp
