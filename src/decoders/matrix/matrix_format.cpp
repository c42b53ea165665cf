#include "decoders/matrix/matrix_format.h"

namespace Lume {

namespace {

constexpr float a = 0.8164966f;   // the root of 2 / 3
constexpr float c = 0.70710677f;  // the root of 1 / 2

}  // namespace

const MatrixFormat lcrs2lrs{4, 3, {1.0f, c, 1.0f, 1.0f}, {{1, 0}, {1, 2}, {3}}};
const MatrixFormat lrs2lcrs{3, 4, {a, a, 1.0f}, {{0}, {0, 1, 1.0f, c}, {1}, {2}}};
const MatrixFormat ltrt2lrs{2, 3, {a, a}, {{0}, {1}, {0, 1, -1.0f}}};
const MatrixFormat ltrt2lcrs{2, 4, {c, c}, {{0}, {0, 1, 1.0f, c}, {1}, {0, 1, -1.0f}}};
const MatrixFormat lrs2fronts{3, 3, {1.0f, 1.0f, c}, {{0}, {1}, {2}}};
const MatrixFormat lcrs2fronts{4, 3, {1.0f, c, 1.0f, c}, {{0, 1}, {2, 1}, {3}}};

void MatrixFormat::Mix(float* const* to, float* const* from, unsigned long numSamples) const noexcept {
    float scaled[maxChannels + 1] = {};
    scaled[nothing] = -0.0f;  // added to a number it leaves even the sign of a zero
    for (unsigned long n = 0; n < numSamples; ++n) {
        for (unsigned int i = 0; i < numInputs; ++i) scaled[i] = inputGains[i] * from[i][n];
        for (unsigned int j = 0; j < numOutputs; ++j) {
            const auto& [first, second, sign, gain] = outputs[j];
            to[j][n] = (scaled[first] + sign * scaled[second]) * gain;
        }
    }
}

}  // namespace Lume
