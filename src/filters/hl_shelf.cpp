#include "filters/hl_shelf.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "dsp/denormals.h"

namespace Lume {

namespace {

constexpr float pi = 3.1415927f;
/// The largest float below pi / 2. The next one lies above it, where the tangent is negative and the pole would leave
/// the unit circle.
constexpr float maxTanArgument = 1.5707962513f;
/// Its tangent, written down: compilers that know the argument compute another last digit than the C library does, and
/// then builds would differ by their optimisation level.
constexpr float maxTangent = 13245402.0f;

constexpr unsigned int numParameters = 6;
enum StateIndex : unsigned int { x1, x2, y1, y2, numStates };

float Tangent(float argument) {
    return argument >= maxTanArgument ? maxTangent : std::tan(argument);
}

float LinearFromDb(float dB) {
    return dB == 0.0f ? 1.0f : std::pow(10.0f, dB * 0.05f);
}

/// Limits of a section. A short decay far below that of the next band asks the late field's filters for steps of
/// thousands of decibels, whose ratio would be zero or infinite and the taps not a number. Nothing audible is limited:
/// 600 dB, and a factor that only a crossover at half the sample rate reaches.
constexpr float minRatio = 1e-30f;
constexpr float maxRatio = 1e30f;
constexpr float maxFactor = 1e18f;

/// |c0 + c1 q + c2 q^2|^2 on the unit circle, a parabola in u = 1 - cos(w).
struct SquaredMagnitude {
    SquaredMagnitude(double c0, double c1, double c2)
        : constant((c0 + c1 + c2) * (c0 + c1 + c2)),
          linear(-2.0 * (c1 * (c0 + c2) + 4.0 * c0 * c2)),
          square(4.0 * c0 * c2) {}
    double operator()(double u) const { return constant + (linear + square * u) * u; }
    double constant, linear, square;
};

}  // namespace

void HLShelf::Section::Design(float newStepDb, float newArgument) {
    if (isDone && newStepDb == stepDb && newArgument == argument) return;
    if (newArgument != argument) tangent = Tangent(newArgument);
    if (newStepDb != stepDb) {
        ratio = std::min(std::max(LinearFromDb(newStepDb), minRatio), maxRatio);
        root = std::sqrt(ratio);
    }
    stepDb = newStepDb;
    argument = newArgument;
    isDone = true;
    const float t = tangent / root;
    pole = (t - 1.0f) / (1.0f + t);
    zero = (ratio * t - 1.0f) / (1.0f + ratio * t);
    k = std::min((1.0f + ratio * t) / (1.0f + t), maxFactor);
}

void HLShelf::Section::ExpectCrossoverOf(Section const& other) noexcept {
    isDone = isDone && argument == other.argument;
    argument = other.argument;
    tangent = other.tangent;
}

HLShelf::HLShelf() {
    const HLShelfParameters defaults;
    order = 2;
    coefficients.resize(numParameters);
    state.resize(numStates);
    HLShelf::SetAll(defaults.gain, defaults.gainLow, defaults.gainMed, defaults.gainHigh, defaults.freqLow,
                    defaults.freqHigh);
}

void HLShelf::SetSamplerate(float newSamplerate) {
    if (newSamplerate == samplerate) return;
    samplerate = newSamplerate;
    // From the working fields: a crossover that the old rate has clamped stays where it was clamped.
    SetAll(gain, gainLow, gainMed, gainHigh, freqLow, freqHigh);
    Clear();
}

void HLShelf::Process(float* output, float* input, unsigned long numSamples) {
    orvandsp::FlushDenormals();
    // Local copies: the output might alias the members, for all that the compiler knows.
    ShelfRecursion<float> recursion = {.b0 = taps[b0],
                                       .b1 = taps[b1],
                                       .b2 = taps[b2],
                                       .a1 = taps[a1],
                                       .a2 = taps[a2],
                                       .x1 = state[x1],
                                       .x2 = state[x2],
                                       .y1 = state[y1],
                                       .y2 = state[y2]};
    const float outputGain = OutputGain();
    for (unsigned long i = 0; i < numSamples; ++i) output[i] = recursion(input[i]) * outputGain;
    state[x1] = recursion.x1;
    state[x2] = recursion.x2;
    state[y1] = recursion.y1;
    state[y2] = recursion.y2;
}

void HLShelf::SetCoefficients(HLShelf const& other) {
    // A copy, because the other may be this one.
    float six[numParameters];
    std::copy_n(other.coefficients.begin(), numParameters, six);
    SetCoefficients(six);
}

double HLShelf::LargestMagnitude() const noexcept {
    const double poles1 = static_cast<double>(taps[a1]), poles2 = static_cast<double>(taps[a2]);
    // Written as "not inside", so that not a number counts as unstable too.
    if (!(std::abs(poles2) < 1.0 && std::abs(poles1) < 1.0 + poles2)) return std::numeric_limits<double>::infinity();

    // The squared magnitude is a quotient of two parabolas in u = 1 - cos(w), 0 at 0 Hz and 2 at half the sample rate.
    // Written in u and not in the cosine, its coefficients keep their digits when poles lie next to 1.
    const SquaredMagnitude above(static_cast<double>(taps[b0]), static_cast<double>(taps[b1]),
                                 static_cast<double>(taps[b2]));
    const SquaredMagnitude below(1.0, poles1, poles2);
    double largest = std::max(above(0.0) / below(0.0), above(2.0) / below(2.0));
    // The derivative of the quotient is 0 where (x u + y) u + z is.
    const double x = above.square * below.linear - above.linear * below.square;
    const double y = 2.0 * (above.square * below.constant - above.constant * below.square);
    const double z = above.linear * below.constant - above.constant * below.linear;
    const double root = std::sqrt(y * y - 4.0 * x * z);
    const double sum = y < 0.0 ? root - y : -root - y;
    for (const double u : {sum / (2.0 * x), 2.0 * z / sum})
        if (u > 0.0 && u < 2.0) largest = std::max(largest, above(u) / below(u));
    return std::sqrt(largest);
}

double HLShelf::LargestNoiseGain() const noexcept {
    const SquaredMagnitude below(1.0, static_cast<double>(taps[a1]), static_cast<double>(taps[a2]));
    double smallest = std::min(below(0.0), below(2.0));
    const double lowest = -0.5 * below.linear / below.square;
    if (below.square > 0.0 && lowest > 0.0 && lowest < 2.0) smallest = std::min(smallest, below(lowest));
    return 1.0 / std::sqrt(smallest);
}

void HLShelf::GetCoefficients(std::vector<float>& result) const {
    std::copy(coefficients.begin(), coefficients.end(), result.begin());
}

void HLShelf::SetGain(float linear) {
    StoreGain(10.0f * std::log10(linear));
}

void HLShelf::StoreGain(float gaindB) {
    gain = gaindB;
    linearGain = LinearFromDb(gaindB);
}

void HLShelf::SetParameters(HLShelfParameters const& parameters) {
    gain = parameters.gain;
    gainLow = parameters.gainLow;
    gainMed = parameters.gainMed;
    gainHigh = parameters.gainHigh;
    freqLow = parameters.freqLow;
    freqHigh = parameters.freqHigh;
    Design();
}

void HLShelf::SetAll(float newGain, float newGainLow, float newGainMed, float newGainHigh, float newFreqLow,
                     float newFreqHigh) {
    coefficients.assign({newGain, newGainLow, newGainMed, newGainHigh, newFreqLow, newFreqHigh});
    gain = newGain;
    gainLow = newGainLow;
    gainMed = newGainMed;
    gainHigh = newGainHigh;
    freqLow = newFreqLow;
    freqHigh = newFreqHigh;
    Design();
}

void HLShelf::Design() {
    if (freqHigh < freqLow) std::swap(freqLow, freqHigh);
    if (freqLow < 0.0f) freqLow = 0.0f;
    if (freqHigh > samplerate / 2.0f) freqHigh = samplerate / 2.0f;

    const float perHertz = pi / samplerate;
    low.Design(gainLow - gainMed, perHertz * freqLow);
    high.Design(gainMed - gainHigh, perHertz * freqHigh);
    if (gainHigh != linearHighDb) {
        linearHighDb = gainHigh;
        linearHigh = LinearFromDb(gainHigh);
    }
    taps[b0] = low.k * high.k * linearHigh;
    taps[b1] = (high.zero + low.zero) * taps[b0];
    taps[b2] = taps[b0] * (high.zero * low.zero);
    taps[a1] = high.pole + low.pole;
    taps[a2] = high.pole * low.pole;
    linearGain = LinearFromDb(gain);
}

}  // namespace Lume
