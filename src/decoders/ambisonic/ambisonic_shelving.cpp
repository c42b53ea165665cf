#include "decoders/ambisonic/ambisonic_shelving.h"

#include <algorithm>
#include <cmath>

#include "dsp/denormals.h"

namespace Lume {

AmbisonicShelving::AmbisonicShelving() {
    numOutputs = 2;
    ComputeCoefficients();
}

void AmbisonicShelving::SetCrossover(float frequency) {
    crossover = frequency;
    ComputeCoefficients();
}

void AmbisonicShelving::ComputeCoefficients() {
    // Below 0 and beyond three quarters of the rate the sine is negative, the allpass unstable.
    const float limited = std::min(std::max(0.0f, crossover), 0.75f * samplerate);
    const float x = 6.2831855f * limited / samplerate;
    const float c = std::cos(x);
    const float s = std::sin(x);
    // Near and beyond a quarter of the sample rate the quotient has no value, or one outside the unit circle.
    allpass = c >= 0.001f ? (s - 1.0f) / c : c * -0.5f;
    lowpass = (1.0f - allpass) / 2.0f;
}

void AmbisonicShelving::Process(float const* input, float* low, float* high, unsigned long numSamples) noexcept {
    orvandsp::FlushDenormals();
    const float a = allpass;
    const float b = lowpass;
    float s1 = allpassState, s2 = lowpassState1, s3 = lowpassState2;
    for (unsigned long n = 0; n < numSamples; ++n) {
        const float x = input[n];
        const float t = (x - s2) * b;
        const float u = t + s2;
        s2 = u + t;
        const float v = (u - s3) * b;
        const float w = v + s3;
        s3 = w + v;
        const float y = x - a * s1;
        low[n] = w;
        high[n] = s1 + a * y - w;
        s1 = y;
    }
    allpassState = s1;
    lowpassState1 = s2;
    lowpassState2 = s3;
}

void AmbisonicShelving::Process(float** outputs, float** inputs, unsigned long numSamples,
                                short const* /*activeInputs*/) {
    Process(inputs[0], outputs[0], outputs[1], numSamples);
}

void AmbisonicShelving::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    ComputeCoefficients();
}

}  // namespace Lume
