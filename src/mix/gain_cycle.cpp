#include "mix/gain_cycle.h"

#include <algorithm>

namespace Lume {

namespace kernels = orvandsp::kernels;

namespace {

/// Longest stretch that is mixed at once [samples]: all its inputs are read before an output is written.
constexpr std::int32_t partLength = 64;

/// So many terms are gathered before they are mixed, if there are.
constexpr unsigned int minTerms = 64;

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
      runningGains(requestedGains.size()),
      inputCopies(static_cast<std::size_t>(numInputs) * partLength),
      sharesEnd(numOutputs + 1),
      termsEnd(numOutputs),
      terms(std::max(numInputs, minTerms)),
      ramps(terms.size()),
      movingElements(terms.size()),
      movingGains(terms.size() * partLength) {
    shares.reserve(requestedGains.size());
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
        ListShares(mix);
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

/// The gain of a slide at the chunk's first sample is that of the chunk's start, at its last sample that of the chunk's
/// end: neighbouring chunks share a gain, and a chunk of one sample has no slope.
void GainCycle::MixPart(Mix const& mix, Part const& part) {
    const auto count = static_cast<std::size_t>(part.count);
    if (!mix.apart) {
        for (unsigned int i = 0; i < mix.numInputs; ++i)
            if (mix.activeInputs[i] != 0)
                std::copy_n(mix.inputs[i] + part.first, count, &inputCopies[i * std::size_t{partLength}]);
    }
    // Outputs are mixed when there is no room for the terms of a further one: gains that slide come in long rows then.
    std::size_t numTerms = 0, numMoving = 0;
    unsigned int firstOutput = 0;
    const auto flush = [&](unsigned int endOutput) {
        if (numMoving > 0) kernels::Get().gainRamps(ramps.data(), numMoving, count);
        for (std::size_t m = 0; m < numMoving; ++m) runningGains[movingElements[m]] = ramps[m].gain;
        std::size_t first = 0;
        for (unsigned int j = firstOutput; j < endOutput; ++j) {
            kernels::Get().mix(mix.outputs[j] + part.first, &terms[first], termsEnd[j] - first, count, mix.replace);
            first = termsEnd[j];
        }
        firstOutput = endOutput;
        numTerms = numMoving = 0;
    };
    for (unsigned int j = 0; j < mix.numOutputs; ++j) {
        if (numTerms + sharesEnd[j + 1] - sharesEnd[j] > terms.size()) flush(j);
        for (std::size_t s = sharesEnd[j]; s < sharesEnd[j + 1]; ++s) {
            const auto [i, start, target] = shares[s];
            if (mix.activeInputs[i] == 0) continue;
            float const* const input =
                mix.apart ? mix.inputs[i] + part.first : &inputCopies[i * std::size_t{partLength}];
            if (target == start) {
                terms[numTerms++] = {input, target, nullptr};
                continue;
            }
            const float slope = target - start;
            const float g0 = static_cast<float>(position) * inverseLength * slope + start;
            const float g1 = static_cast<float>(position + part.chunk) * inverseLength * slope + start;
            const float step = part.chunk > 1 ? (g1 - g0) / static_cast<float>(part.chunk - 1) : 0.0f;
            const std::size_t element = static_cast<std::size_t>(i) * mix.numOutputs + j;
            float* const values = &movingGains[numMoving * std::size_t{partLength}];
            ramps[numMoving] = {part.done == 0 ? g0 : runningGains[element], step, values};
            movingElements[numMoving++] = element;
            terms[numTerms++] = {input, 0.0f, values};
        }
        termsEnd[j] = numTerms;
    }
    flush(mix.numOutputs);
}

/// Lists what is to be mixed in this cycle, by output. Adding leaves out gains that are and stay 0.
void GainCycle::ListShares(Mix const& mix) {
    const SharesKey key = {mix.numInputs, mix.numOutputs, mix.replace};
    if (sharesKey == key) return;
    sharesKey = key;
    shares.clear();
    sharesEnd[0] = 0;
    for (unsigned int j = 0; j < mix.numOutputs; ++j) {
        for (unsigned int i = 0; i < mix.numInputs; ++i) {
            const std::size_t element = static_cast<std::size_t>(i) * mix.numOutputs + j;
            const float start = startGains[element], target = targetGains[element];
            if (target != start || target != 0.0f || mix.replace) shares.push_back({i, start, target});
        }
        sharesEnd[j + 1] = shares.size();
    }
}

void GainCycle::Roll() {
    startGains = targetGains;
    targetGains = requestedGains;
    sharesKey.reset();
    position = 0;
}

}  // namespace Lume
