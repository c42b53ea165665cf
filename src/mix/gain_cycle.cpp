#include "mix/gain_cycle.h"

#include <algorithm>

#include "dsp/constants.h"

namespace Lume {

namespace kernels = orvandsp::kernels;

namespace {

/// Longest stretch that is mixed at once [samples]: all its inputs are read before an output is written.
constexpr std::int32_t partLength = kernels::gainRowLength;

/// So many gains that slide are computed at once, if no output needs more: as many as the nearest cache holds.
constexpr std::size_t minMoving = 32;

/// Up to whole registers of any width.
std::size_t Padded(std::size_t numRamps) {
    return (numRamps + kernels::maxLanes - 1) / kernels::maxLanes * kernels::maxLanes;
}

std::int32_t CutToSamples(float samples, std::int32_t lowest) {
    constexpr float highest = 2147483520.0f;  // the largest float that a 32-bit count holds
    if (!(samples >= static_cast<float>(lowest))) return lowest;
    return static_cast<std::int32_t>(std::min(samples, highest));
}

/// Whether no output is one of the inputs, or another output. Told by the addresses alone: some arrays that lie in
/// another order than their channels count as overlapping, too.
bool LieApart(float* const* outputs, unsigned int numOutputs, float* const* inputs, unsigned int numInputs,
              short const* activeInputs, unsigned long numSamples) {
    std::uintptr_t end = 0, begin = ~std::uintptr_t{0};
    const auto bytes = static_cast<std::uintptr_t>(numSamples * sizeof(float));
    for (unsigned int j = 0; j < numOutputs; ++j) {
        const auto address = reinterpret_cast<std::uintptr_t>(outputs[j]);
        if (address < end) return false;
        begin = std::min(begin, address);
        end = address + bytes;
    }
    for (unsigned int i = 0; i < numInputs; ++i) {
        const auto address = reinterpret_cast<std::uintptr_t>(inputs[i]);
        if (activeInputs[i] != 0 && address < end && address + bytes > begin) return false;
    }
    return true;
}

}  // namespace

/// One call's arguments.
struct GainCycle::Mix {
    float** outputs;
    float** inputs;
    short const* activeInputs;
    unsigned int numInputs;
    unsigned int numOutputs;
    bool replace;  // the first active input writes over the outputs instead of adding to them
    bool apart;    // no array overlaps another one
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
      inputCopies(numInputs, std::vector<float>(partLength)),
      listedInputs(numInputs),
      termsEnd(numOutputs),
      movingGains(1, static_cast<unsigned int>(Padded(std::max<std::size_t>(numInputs, minMoving)) * partLength)) {
    terms.reserve(requestedGains.size());
    batches.reserve(numOutputs);
    const std::size_t mostRamps = requestedGains.size() + numOutputs * kernels::maxLanes;
    for (std::vector<float>* const ofRamps : {&rampStarts, &rampSlopes, &rampGains}) ofRamps->reserve(mostRamps);
}

void GainCycle::SetLength(float samples) {
    length = CutToSamples(samples, 1);
    inverseLength = 1.0f / static_cast<float>(length);
}

void GainCycle::SetPosition(float samples) {
    position = CutToSamples(samples, 0);
}

void GainCycle::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs,
                        unsigned int numInputs, unsigned int numOutputs) {
    if (std::all_of(activeInputs, activeInputs + numInputs, [](short flag) { return flag == 0; })) {
        for (unsigned int j = 0; j < numOutputs; ++j) std::fill_n(outputs[j], numSamples, 0.0f);
        return;
    }
    Run({outputs, inputs, activeInputs, numInputs, numOutputs, true,
         LieApart(outputs, numOutputs, inputs, numInputs, activeInputs, numSamples)},
        numSamples);
}

void GainCycle::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs,
                              unsigned int numInputs, unsigned int numOutputs) {
    Run({outputs, inputs, activeInputs, numInputs, numOutputs, false,
         LieApart(outputs, numOutputs, inputs, numInputs, activeInputs, numSamples)},
        numSamples);
}

void GainCycle::Run(Mix const& mix, unsigned long numSamples) {
    for (unsigned long done = 0; done < numSamples;) {
        if (position >= length) Roll();
        const auto count =
            static_cast<std::int32_t>(std::min(numSamples - done, static_cast<unsigned long>(length - position)));
        ListTerms(mix);
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
        MixPart(mix, part);
    }
}

void GainCycle::MixPart(Mix const& mix, Part const& part) {
    const auto count = static_cast<std::size_t>(part.count);
    float const* copies[orvandsp::MaxNumChannels];
    if (!mix.apart) {
        for (unsigned int i = 0; i < mix.numInputs; ++i) {
            copies[i] = inputCopies[i].data();
            if (mix.activeInputs[i] != 0) std::copy_n(mix.inputs[i] + part.first, count, inputCopies[i].data());
        }
    }
    const kernels::MixSources sources = {.inputs = mix.apart ? mix.inputs : copies,
                                         .first = mix.apart ? part.first : 0,
                                         .gains = movingGains.GetChannel(0)};
    // The gain of a slide at the chunk's first sample is that of the chunk's start, at its last sample that of the
    // chunk's end: neighbouring chunks share a gain, and a chunk of one sample has no slope.
    const kernels::GainSection section = {.begin = static_cast<float>(position) * inverseLength,
                                          .end = static_cast<float>(position + part.chunk) * inverseLength,
                                          .numSteps = static_cast<float>(part.chunk - 1),
                                          .isFirst = part.done == 0};
    unsigned int output = 0;
    for (auto const& [endOutput, firstRamp, numRamps] : batches) {
        // Without a gain that moves, or a term, there are no arrays to point into.
        kernels::Get().gainRamps(
            {rampStarts.data() + firstRamp, rampSlopes.data() + firstRamp, rampGains.data() + firstRamp}, numRamps,
            section, movingGains.GetChannel(0), count);
        kernels::Get().mix(mix.outputs + output, part.first, endOutput - output, sources, terms.data(),
                           output == 0 ? 0 : termsEnd[output - 1], termsEnd.data() + output, count, mix.replace);
        output = endOutput;
    }
}

/// Lists what is to be mixed in this cycle, by output. Adding leaves out gains that are and stay 0.
void GainCycle::ListTerms(Mix const& mix) {
    const ListKey key = {mix.numInputs, mix.numOutputs, mix.replace};
    if (listedFor == key && std::equal(mix.activeInputs, mix.activeInputs + mix.numInputs, listedInputs.begin()))
        return;
    listedFor = key;
    std::copy_n(mix.activeInputs, mix.numInputs, listedInputs.begin());
    terms.clear();
    batches.clear();
    for (std::vector<float>* const ofRamps : {&rampStarts, &rampSlopes, &rampGains}) ofRamps->clear();
    std::size_t firstRamp = 0;  // of the batch
    const auto endBatch = [&](unsigned int endOutput) {
        batches.push_back({endOutput, firstRamp, rampStarts.size() - firstRamp});
        firstRamp = Padded(rampStarts.size());
        for (std::vector<float>* const ofRamps : {&rampStarts, &rampSlopes, &rampGains}) ofRamps->resize(firstRamp);
    };
    for (unsigned int j = 0; j < mix.numOutputs; ++j) {
        const auto ofOutput = [&](unsigned int i) { return static_cast<std::size_t>(i) * mix.numOutputs + j; };
        std::size_t numMoving = 0;
        for (unsigned int i = 0; i < mix.numInputs; ++i)
            if (mix.activeInputs[i] != 0 && targetGains[ofOutput(i)] != startGains[ofOutput(i)]) ++numMoving;
        const std::size_t numBefore = rampStarts.size() - firstRamp;
        if (numBefore > 0 && numBefore + numMoving > minMoving) endBatch(j);
        for (unsigned int i = 0; i < mix.numInputs; ++i) {
            if (mix.activeInputs[i] == 0) continue;
            const float start = startGains[ofOutput(i)], target = targetGains[ofOutput(i)];
            if (target != start) {
                terms.push_back({i, static_cast<std::int32_t>(rampStarts.size() - firstRamp), 0.0f});
                rampStarts.push_back(start);
                rampSlopes.push_back(target - start);
                rampGains.push_back(start);
            } else if (target != 0.0f || mix.replace) {
                terms.push_back({i, kernels::MixTerm::steady, target});
            }
        }
        termsEnd[j] = terms.size();
    }
    endBatch(mix.numOutputs);
}

void GainCycle::Roll() {
    startGains = targetGains;
    targetGains = requestedGains;
    listedFor.reset();
    position = 0;
}

}  // namespace Lume
