#include "filters/four_cascades.h"

#include <algorithm>
#include <utility>

#include "dsp/denormals.h"
#include "filters/biquad_recursion.h"

namespace Lume {

namespace {

using orvandsp::Float4;
using orvandsp::PerLane;

/// Four blocks on their way through the stages.
struct Pass {
    PerLane<float*> outputs;
    PerLane<float const*> inputs;
    unsigned long numSamples;
    Float4 gain;
    PerLane<float const*> taps;  // of the first stage of the pass
    PerLane<float*> states;
};

template <std::size_t N>
void RunStages(Pass const& pass) noexcept {
    BiquadRecursion<Float4, N> recursion;
    recursion.gain = pass.gain;
    for (std::size_t i = 0; i < N * 4; i += 4) {
        const PerLane<Float4> taps = orvandsp::LoadRows(pass.taps, i);
        const PerLane<Float4> states =
            orvandsp::LoadRows({pass.states[0], pass.states[1], pass.states[2], pass.states[3]}, i);
        std::copy_n(taps.begin(), 4, &recursion.taps[i]);
        std::copy_n(states.begin(), 4, &recursion.states[i]);
    }
    recursion = orvandsp::FilterFourChannels(pass.outputs, pass.inputs, pass.numSamples, recursion);
    for (std::size_t i = 0; i < N * 4; i += 4) {
        PerLane<Float4> states;
        std::copy_n(&recursion.states[i], 4, states.begin());
        orvandsp::StoreRows(pass.states, i, states);
    }
}

template <std::size_t... N>
constexpr std::array<void (*)(Pass const&) noexcept, sizeof...(N)> MakeTable(std::index_sequence<N...>) {
    return {RunStages<N>...};
}

constexpr auto runStages = MakeTable(std::make_index_sequence<maxStagesPerPass + 1>());

}  // namespace

void FilterFourCascades(PerLane<CascadeJob> const& jobs, std::size_t numJobs, unsigned long numSamples) {
    const std::size_t numStages = jobs[0].cascade->numStages;
    for (CascadeJob const& job : jobs) {
        if (job.cascade->numStages == numStages) continue;
        for (std::size_t i = 0; i < numJobs; ++i) jobs[i].cascade->Process(jobs[i].output, jobs[i].input, numSamples);
        return;
    }
    orvandsp::FlushDenormals();
    Pass pass{};
    pass.numSamples = numSamples;
    for (std::size_t lane = 0; lane < orvandsp::numLanes; ++lane) {
        BiquadCascade& cascade = *jobs[lane].cascade;
        pass.outputs[lane] = jobs[lane].output;
        pass.inputs[lane] = jobs[lane].input;
        pass.gain[lane] = cascade.gain;
        pass.taps[lane] = cascade.coefficients.data();
        pass.states[lane] = cascade.state.data();
    }
    std::size_t first = 0;
    do {
        const std::size_t count = std::min(numStages - first, maxStagesPerPass);
        runStages[count](pass);
        first += count;
        pass.gain = Float4{1.0f, 1.0f, 1.0f, 1.0f};
        for (std::size_t lane = 0; lane < orvandsp::numLanes; ++lane) {
            pass.inputs[lane] = pass.outputs[lane];
            pass.taps[lane] += 4 * count;
            pass.states[lane] += 4 * count;
        }
    } while (first < numStages);
}

}  // namespace Lume
