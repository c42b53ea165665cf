#include "filters/low_pass.h"

#include <algorithm>
#include <cmath>

namespace Lume {

LowPass::LowPass(float cutoff, float newDamping)
    : cutoffFrequency(cutoff), damping(std::clamp(newDamping, MinDamping, MaxDamping)) {
    order = 2;
    coefficients.resize(5);
    Design();
}

void LowPass::SetCutOffFrequency(float cutoff) {
    cutoffFrequency = cutoff;
    Design();
}

void LowPass::SetDamping(float newDamping) {
    damping = std::clamp(newDamping, MinDamping, MaxDamping);
    Design();
}

void LowPass::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    cascade.SetSamplerate(newSamplerate);
    Design();
}

void LowPass::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    cascade.SetMaxBlockSize(blockSize);
}

void LowPass::SetCoefficients(float* five) {
    std::copy_n(five, coefficients.size(), coefficients.begin());
    cascade.SetCoefficients(coefficients.data());
}

void LowPass::ClearTaps() {
    std::fill(coefficients.begin(), coefficients.end(), 0.0f);
    cascade.ClearTaps();
}

void LowPass::GetCoefficients(std::vector<float>& result) const {
    std::copy(coefficients.begin(), coefficients.end(), result.begin());
}

void LowPass::Design() {
    computeBiquadTapsForLowPass(coefficients.data(), cutoffFrequency, damping, samplerate);
    cascade.SetCoefficients(coefficients.data());
}

void computeBiquadTapsForLowPass(float* five, float cutoff, float damping, float sampleRate) {
    const float d = std::clamp(damping, LowPass::MinDamping, LowPass::MaxDamping);
    const float w = std::clamp(cutoff * 6.2831855f / sampleRate, 0.0f, 3.1415927f);
    const float c = std::cos(w);
    // 1.002 in place of 1 keeps the poles inside the unit circle when there is no damping.
    const float k = 2.0f / (std::sin(w) * 0.5f * d + 1.002f);
    const float m = c * k;
    five[0] = (k - m) * 0.25f;
    five[1] = 2.0f;
    five[2] = 1.0f;
    five[3] = -m;
    five[4] = k - 1.0f;
}

}  // namespace Lume
