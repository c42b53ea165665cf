#include "filters/biquad_cascade.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "dsp/denormals.h"
#include "filters/biquad_recursion.h"

namespace Lume {

namespace {

using One = BiquadRecursion<float, 1>;
constexpr std::size_t numTapsPerStage = One::numTapsPerStage;
constexpr std::size_t numStatesPerStage = One::numStatesPerStage;

/// Runs N stages over a block; output may be input.
template <std::size_t N>
void RunStages(float* output, float const* input, unsigned long numSamples, float gain, float const* taps,
               float* states) noexcept {
    // Local copies: the output might alias the members, for all that the compiler knows.
    BiquadRecursion<float, N> recursion;
    recursion.gain = gain;
    std::copy_n(taps, recursion.taps.size(), recursion.taps.begin());
    std::copy_n(states, recursion.states.size(), recursion.states.begin());
    for (unsigned long k = 0; k < numSamples; ++k) output[k] = recursion(input[k]);
    std::copy_n(recursion.states.begin(), recursion.states.size(), states);
}

using RunFunction = void (*)(float*, float const*, unsigned long, float, float const*, float*) noexcept;

template <std::size_t... N>
constexpr std::array<RunFunction, sizeof...(N)> MakeTable(std::index_sequence<N...>) {
    return {RunStages<N>...};
}

/// One unrolled form for each number of stages in a pass.
constexpr auto runStages = MakeTable(std::make_index_sequence<maxStagesPerPass + 1>());

}  // namespace

BiquadCascade::BiquadCascade(unsigned int newNumStages) {
    SetNumStages(newNumStages);
}

void BiquadCascade::SetNumStages(unsigned int newNumStages) {
    numStages = newNumStages;
    order = 2 * numStages;
    coefficients.resize(std::size_t{numStages} * numTapsPerStage);
    state.resize(std::size_t{numStages} * numStatesPerStage);
    inSeries = false;
}

void BiquadCascade::Process(float* output, float* input, unsigned long numSamples) {
    orvandsp::FlushDenormals();
    float const* source = input;
    float passGain = gain;
    std::size_t first = 0;
    do {
        const std::size_t count = std::min(numStages - first, maxStagesPerPass);
        runStages[count](output, source, numSamples, passGain, coefficients.data() + first * numTapsPerStage,
                         state.data() + first * numStatesPerStage);
        source = output;
        passGain = 1.0f;
        first += count;
    } while (first < numStages);
}

bool BiquadCascade::IsInSeries() noexcept {
    if (inSeries) return true;
    for (std::size_t i = numStatesPerStage; i < state.size(); i += numStatesPerStage)
        // By bits, in which zeros have a sign. NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
        if (std::memcmp(&state[i + One::stateX1], &state[i - numStatesPerStage + One::stateY1], 2 * sizeof(float)) != 0)
            return false;
    inSeries = true;
    return true;
}

void BiquadCascade::SetCoefficients(float* set) {
    gain = set[0];
    for (std::size_t i = 0; i < coefficients.size(); i += numTapsPerStage) {
        coefficients[i + One::tapB1] = set[i + 1];
        coefficients[i + One::tapB2] = set[i + 2];
        coefficients[i + One::tapMinusA1] = -set[i + 3];
        coefficients[i + One::tapMinusA2] = -set[i + 4];
    }
}

bool BiquadCascade::IsStable() const {
    for (std::size_t i = 0; i < coefficients.size(); i += numTapsPerStage)
        if (!DurbinStepDownRecursion({1.0f, -coefficients[i + One::tapMinusA1], -coefficients[i + One::tapMinusA2]}))
            return false;
    return true;
}

bool BiquadCascade::IsMinimumPhase() const {
    for (std::size_t i = 0; i < coefficients.size(); i += numTapsPerStage)
        if (!DurbinStepDownRecursion({1.0f, coefficients[i + One::tapB1], coefficients[i + One::tapB2]})) return false;
    return true;
}

void BiquadCascade::GetCoefficients(std::vector<float>& result) const {
    result[0] = gain;
    std::copy(coefficients.begin(), coefficients.end(), result.begin() + 1);
}

void InvertBiquadsCascades(float* set, unsigned int length) {
    set[0] = 1.0f / set[0];
    for (unsigned int i = 1; i + 3 < length; i += 4) {
        std::swap(set[i], set[i + 2]);
        std::swap(set[i + 1], set[i + 3]);
    }
}

}  // namespace Lume
