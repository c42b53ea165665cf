#include "pan/gain_cycle.h"

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

/// The four ways in which one input reaches one output. Ramps carry their gain by repeated addition of the step and
/// return it for the next sample.
void WriteScaled(float* __restrict output, float const* __restrict input, std::int32_t count, float gain) {
    for (std::int32_t k = 0; k < count; ++k) output[k] = input[k] * gain;
}

void AddScaled(float* __restrict output, float const* __restrict input, std::int32_t count, float gain) {
    for (std::int32_t k = 0; k < count; ++k) output[k] += input[k] * gain;
}

float WriteRamped(float* __restrict output, float const* __restrict input, std::int32_t count, float gain, float step) {
    for (std::int32_t k = 0; k < count; ++k) {
        output[k] = input[k] * gain;
        gain += step;
    }
    return gain;
}

float AddRamped(float* __restrict output, float const* __restrict input, std::int32_t count, float gain, float step) {
    for (std::int32_t k = 0; k < count; ++k) {
        output[k] += input[k] * gain;
        gain += step;
    }
    return gain;
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

/// Mixes samples that lie in one cycle. The gain of a ramp at the chunk's first sample is that of the chunk's start, at
/// its last sample that of the chunk's end: neighbouring chunks share a gain, and a chunk of one sample has no slope.
void GainCycle::MixChunk(Mix const& mix, unsigned long offset, std::int32_t numSamples) {
    for (std::int32_t done = 0; done < numSamples; done += partLength) {
        const std::int32_t count = std::min(numSamples - done, partLength);
        const unsigned long first = offset + static_cast<unsigned long>(done);
        for (unsigned int i = 0; i < mix.numInputs; ++i) {
            if (mix.activeInputs[i] != 0)
                std::copy_n(mix.inputs[i] + first, count, &inputCopies[static_cast<std::size_t>(i) * partLength]);
        }
        for (unsigned int i = 0; i < mix.numInputs; ++i) {
            if (mix.activeInputs[i] == 0) continue;
            float const* const input = &inputCopies[static_cast<std::size_t>(i) * partLength];
            const bool writes = i == mix.writer;
            for (unsigned int j = 0; j < mix.numOutputs; ++j) {
                const std::size_t element = static_cast<std::size_t>(i) * mix.numOutputs + j;
                const float start = startGains[element];
                const float target = targetGains[element];
                float* const output = mix.outputs[j] + first;
                if (target == start) {
                    if (writes)
                        WriteScaled(output, input, count, target);
                    else if (target != 0.0f || mix.writer != noInput)
                        AddScaled(output, input, count, target);
                    continue;
                }
                const float g0 = static_cast<float>(position) * inverseLength * (target - start) + start;
                const float g1 = static_cast<float>(position + numSamples) * inverseLength * (target - start) + start;
                const float step = numSamples > 1 ? (g1 - g0) / static_cast<float>(numSamples - 1) : 0.0f;
                const float gain = done == 0 ? g0 : runningGains[element];
                runningGains[element] = writes ? WriteRamped(output, input, count, gain, step)
                                               : AddRamped(output, input, count, gain, step);
            }
        }
    }
}

void GainCycle::Roll() {
    startGains = targetGains;
    targetGains = requestedGains;
    position = 0;
}

}  // namespace Lume
