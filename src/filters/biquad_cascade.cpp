#include "filters/biquad_cascade.h"

#include <algorithm>
#include <array>
#include <utility>

#include "dsp/denormals.h"

namespace Lume {

namespace {

enum TapIndex : unsigned int { tapB1, tapB2, tapMinusA1, tapMinusA2, numTapsPerStage };
enum StateIndex : unsigned int { stateX1, stateX2, stateY1, stateY2, numStatesPerStage };

/// Stages that one pass over the block takes. Within a pass the stages of several samples overlap in the processor's
/// pipeline, which is what hides the latency of each stage's recursion.
constexpr std::size_t maxStagesPerPass = 8;

/// Runs N stages over a block; output may be input.
template <std::size_t N>
void RunStages(float* output, float const* input, unsigned long numSamples, float gain, float const* taps,
               float* states) noexcept {
    // Local copies: the output might alias the members, for all that the compiler knows.
    std::array<float, N * numTapsPerStage> t;
    std::array<float, N * numStatesPerStage> s;
    std::copy_n(taps, t.size(), t.begin());
    std::copy_n(states, s.size(), s.begin());
    for (unsigned long k = 0; k < numSamples; ++k) {
        float v = input[k] * gain;
        for (std::size_t i = 0; i < N * 4; i += 4) {
            const float y = t[i + tapB2] * s[i + stateX2] + t[i + tapB1] * s[i + stateX1] +
                            t[i + tapMinusA1] * s[i + stateY1] + t[i + tapMinusA2] * s[i + stateY2] + v;
            s[i + stateY2] = s[i + stateY1];
            s[i + stateY1] = y;
            s[i + stateX2] = s[i + stateX1];
            s[i + stateX1] = v;
            v = y;
        }
        output[k] = v;
    }
    std::copy_n(s.begin(), s.size(), states);
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
}

void BiquadCascade::SetOrder(unsigned int newOrder) {
    SetNumStages(newOrder >> 1);
}

void BiquadCascade::Clear() {
    std::fill(state.begin(), state.end(), 0.0f);
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

void BiquadCascade::SetCoefficients(float* set) {
    gain = set[0];
    for (std::size_t i = 0; i < coefficients.size(); i += numTapsPerStage) {
        coefficients[i + tapB1] = set[i + 1];
        coefficients[i + tapB2] = set[i + 2];
        coefficients[i + tapMinusA1] = -set[i + 3];
        coefficients[i + tapMinusA2] = -set[i + 4];
    }
}

void BiquadCascade::SetState(Filter const& /*other*/) {
    Clear();
}

void BiquadCascade::ClearTaps() {
    std::fill(coefficients.begin(), coefficients.end(), 0.0f);
}

bool BiquadCascade::IsStable() const {
    for (std::size_t i = 0; i < coefficients.size(); i += numTapsPerStage)
        if (!DurbinStepDownRecursion({1.0f, -coefficients[i + tapMinusA1], -coefficients[i + tapMinusA2]}))
            return false;
    return true;
}

bool BiquadCascade::IsMinimumPhase() const {
    for (std::size_t i = 0; i < coefficients.size(); i += numTapsPerStage)
        if (!DurbinStepDownRecursion({1.0f, coefficients[i + tapB1], coefficients[i + tapB2]})) return false;
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
