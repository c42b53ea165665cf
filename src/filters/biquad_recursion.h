#pragma once

#include <array>
#include <cstddef>

namespace Lume {

/// Stages that one pass over a block takes, so that each number of them has code of its own.
constexpr std::size_t maxStagesPerPass = 8;

/// The difference equations of N stages of BiquadCascade in a row.
///
/// The stages of successive samples overlap in the processor's pipeline, which hides the latency of each stage's
/// recursion.
template <typename Value, std::size_t N>
struct BiquadRecursion {
    enum TapIndex : std::size_t { tapB1, tapB2, tapMinusA1, tapMinusA2, numTapsPerStage };
    enum StateIndex : std::size_t { stateX1, stateX2, stateY1, stateY2, numStatesPerStage };

    Value operator()(Value x) noexcept {
        Value v = x * gain;
        for (std::size_t i = 0; i < N * 4; i += 4) {
            const Value y = taps[i + tapB2] * states[i + stateX2] + taps[i + tapB1] * states[i + stateX1] +
                            taps[i + tapMinusA1] * states[i + stateY1] + taps[i + tapMinusA2] * states[i + stateY2] + v;
            states[i + stateY2] = states[i + stateY1];
            states[i + stateY1] = y;
            states[i + stateX2] = states[i + stateX1];
            states[i + stateX1] = v;
            v = y;
        }
        return v;
    }

    Value gain;
    std::array<Value, N * numTapsPerStage> taps;
    std::array<Value, N * numStatesPerStage> states;
};

}  // namespace Lume
