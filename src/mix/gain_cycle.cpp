#include "mix/gain_cycle.h"

#include <algorithm>

namespace Lume {

namespace {

/// Longest stretch that is mixed at once [samples]: all its inputs are read before an output is written.
constexpr std::int32_t partLength = 64;

constexpr unsigned int noInput = ~0u;

std::int32_t CutToSamples(float samples, std::int32_t lowest) {
    constexpr float highest = 2147483520.0f;  // the largest float that a 32-bit count holds
    if (!(samples >= static_cast<float>(lowest))) return lowest;
    return static_cast<std::int32_t>(std::min(samples, highest));
}

/// What becomes of a product: the first input writes over an output, the others add to it.
template <bool writes>
void Put(float& output, float product) {
    if constexpr (writes)
        output = product;
    else
        output += product;
}

template <bool writes>
void MixSteady(float* __restrict output, float const* __restrict input, std::int32_t count, float gain) {
    for (std::int32_t k = 0; k < count; ++k) Put<writes>(output[k], input[k] * gain);
}

/// A gain that is carried by repeated addition of its step.
struct MovingGain {
    float* output;
    float gain;
    float step;
    float* running;  // where the gain is kept for the next sample
};

template <bool writes>
void MixMoving(MovingGain const& moving, float const* __restrict input, std::int32_t count) {
    float* __restrict const output = moving.output;
    float gain = moving.gain;
    for (std::int32_t k = 0; k < count; ++k) {
        Put<writes>(output[k], input[k] * gain);
        gain += moving.step;
    }
    *moving.running = gain;
}

/// The same for four outputs at once: each gain waits for its last addition, so that four chains take the time of one.
/// Nothing is promised about the outputs here: a caller may fold several into one array.
template <bool writes>
void MixFourMoving(MovingGain const* moving, float const* __restrict input, std::int32_t count) {
    float* const output0 = moving[0].output;
    float* const output1 = moving[1].output;
    float* const output2 = moving[2].output;
    float* const output3 = moving[3].output;
    float gain0 = moving[0].gain, gain1 = moving[1].gain, gain2 = moving[2].gain, gain3 = moving[3].gain;
    const float step0 = moving[0].step, step1 = moving[1].step, step2 = moving[2].step, step3 = moving[3].step;
    for (std::int32_t k = 0; k < count; ++k) {
        const float x = input[k];
        Put<writes>(output0[k], x * gain0);
        Put<writes>(output1[k], x * gain1);
        Put<writes>(output2[k], x * gain2);
        Put<writes>(output3[k], x * gain3);
        gain0 += step0;
        gain1 += step1;
        gain2 += step2;
        gain3 += step3;
    }
    *moving[0].running = gain0;
    *moving[1].running = gain1;
    *moving[2].running = gain2;
    *moving[3].running = gain3;
}

}  // namespace

/// One call's arguments.
struct GainCycle::Mix {
    float** outputs;
    float** inputs;
    short const* activeInputs;
    unsigned int numInputs;
    unsigned int numOutputs;
    unsigned int writer;  // the input that writes over the outputs instead of adding to them
};

/// A stretch of at most partLength samples.
struct GainCycle::Part {
    unsigned long first;  // in the call's block
    std::int32_t done;    // samples of its chunk before it
    std::int32_t count;
    std::int32_t chunk;  // samples of its chunk in all
};

GainCycle::GainCycle(unsigned int numInputs, unsigned int numOutputs)
    : requestedGains(static_cast<std::size_t>(numInputs) * numOutputs),
      startGains(requestedGains.size()),
      targetGains(requestedGains.size()),
      runningGains(requestedGains.size()),
      inputCopies(static_cast<std::size_t>(numInputs) * partLength) {}

void GainCycle::SetLength(float samples) {
    length = CutToSamples(samples, 1);
    inverseLength = 1.0f / static_cast<float>(length);
}

void GainCycle::SetPosition(float samples) {
    position = CutToSamples(samples, 0);
}

void GainCycle::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs,
                        unsigned int numInputs, unsigned int numOutputs) {
    const auto active = static_cast<unsigned int>(
        std::find_if(activeInputs, activeInputs + numInputs, [](short flag) { return flag != 0; }) - activeInputs);
    if (active == numInputs) {
        for (unsigned int j = 0; j < numOutputs; ++j) std::fill_n(outputs[j], numSamples, 0.0f);
        return;
    }
    Run({outputs, inputs, activeInputs, numInputs, numOutputs, active}, numSamples);
}

void GainCycle::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs,
                              unsigned int numInputs, unsigned int numOutputs) {
    Run({outputs, inputs, activeInputs, numInputs, numOutputs, noInput}, numSamples);
}

void GainCycle::Run(Mix const& mix, unsigned long numSamples) {
    for (unsigned long done = 0; done < numSamples;) {
        if (position >= length) Roll();
        const auto count =
            static_cast<std::int32_t>(std::min(numSamples - done, static_cast<unsigned long>(length - position)));
        MixChunk(mix, done, count);
        done += static_cast<unsigned long>(count);
        position += count;
        if (position >= length) Roll();
    }
}

/// Mixes samples that lie in one cycle, part by part: all inputs of a part are read before an output is written.
void GainCycle::MixChunk(Mix const& mix, unsigned long offset, std::int32_t numSamples) {
    for (std::int32_t done = 0; done < numSamples; done += partLength) {
        const Part part = {offset + static_cast<unsigned long>(done), done, std::min(numSamples - done, partLength),
                           numSamples};
        for (unsigned int i = 0; i < mix.numInputs; ++i) {
            if (mix.activeInputs[i] != 0)
                std::copy_n(mix.inputs[i] + part.first, part.count, &inputCopies[i * std::size_t{partLength}]);
        }
        for (unsigned int i = 0; i < mix.numInputs; ++i) {
            if (mix.activeInputs[i] == 0) continue;
            if (i == mix.writer)
                MixInput<true>(mix, i, part);
            else
                MixInput<false>(mix, i, part);
        }
    }
}

/// Mixes one input into all outputs. The gain of a slide at the chunk's first sample is that of the chunk's start, at
/// its last sample that of the chunk's end: neighbouring chunks share a gain, and a chunk of one sample has no slope.
template <bool writes>
void GainCycle::MixInput(Mix const& mix, unsigned int i, Part const& part) {
    float const* const input = &inputCopies[i * std::size_t{partLength}];
    const bool skipsSilence = mix.writer == noInput;
    MovingGain moving[4];
    int numMoving = 0;
    for (unsigned int j = 0; j < mix.numOutputs; ++j) {
        const std::size_t element = static_cast<std::size_t>(i) * mix.numOutputs + j;
        const float start = startGains[element];
        const float target = targetGains[element];
        float* const output = mix.outputs[j] + part.first;
        if (target == start) {
            if (target != 0.0f || !skipsSilence) MixSteady<writes>(output, input, part.count, target);
            continue;
        }
        const float g0 = static_cast<float>(position) * inverseLength * (target - start) + start;
        const float g1 = static_cast<float>(position + part.chunk) * inverseLength * (target - start) + start;
        const float step = part.chunk > 1 ? (g1 - g0) / static_cast<float>(part.chunk - 1) : 0.0f;
        moving[numMoving++] = {output, part.done == 0 ? g0 : runningGains[element], step, &runningGains[element]};
        if (numMoving == 4) {
            MixFourMoving<writes>(moving, input, part.count);
            numMoving = 0;
        }
    }
    for (int m = 0; m < numMoving; ++m) MixMoving<writes>(moving[m], input, part.count);
}

void GainCycle::Roll() {
    startGains = targetGains;
    targetGains = requestedGains;
    position = 0;
}

}  // namespace Lume
