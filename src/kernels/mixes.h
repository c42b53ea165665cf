#pragma once

#include "kernels/kernels.h"
#include "kernels/lanes.h"

/// Work without a recurrence between samples: numLanes samples of a channel at once.
namespace orvandsp::kernels {
namespace {

void Scale(float* const* outs, float const* const* ins, float const* gains, std::size_t numChannels,
           std::size_t numSamples) {
    for (std::size_t c = 0; c < numChannels; ++c) {
        float* const out = outs[c];
        float const* const in = ins[c];
        const float gain = gains[c];
        std::size_t k = 0;
        for (; k + numLanes <= numSamples; k += numLanes) Store(out + k, Load(in + k) * gain);
        for (; k < numSamples; ++k) out[k] = in[k] * gain;
    }
}

void AddScaled(float* const* outs, float const* const* ins, float gain, std::size_t numChannels,
               std::size_t numSamples) {
    for (std::size_t c = 0; c < numChannels; ++c) {
        float* const out = outs[c];
        float const* const in = ins[c];
        std::size_t k = 0;
        for (; k + numLanes <= numSamples; k += numLanes) Store(out + k, Load(out + k) + Load(in + k) * gain);
        for (; k < numSamples; ++k) out[k] += in[k] * gain;
    }
}

void Fade(float* out, float const* a, float const* b, float const* gainsA, float const* gainsB,
          std::size_t numSamples) {
    std::size_t k = 0;
    for (; k + numLanes <= numSamples; k += numLanes)
        Store(out + k, Load(gainsB + k) * Load(b + k) + Load(gainsA + k) * Load(a + k));
    for (; k < numSamples; ++k) out[k] = gainsB[k] * b[k] + gainsA[k] * a[k];
}

bool StaysWithin(float const* const* ins, std::size_t numChannels, float limit, std::size_t numSamples) {
    // Without their sign the bits are whole numbers in the order of magnitude, and what isn't a number lies above all.
    constexpr std::int32_t withoutSign = 0x7fffffff;
    std::int32_t highest;
    __builtin_memcpy(&highest, &limit, sizeof highest);
    LaneInts largest{};
    bool result = true;
    for (std::size_t c = 0; c < numChannels; ++c) {
        std::size_t k = 0;
        for (; k + numLanes <= numSamples; k += numLanes) {
            LaneInts bits;
            __builtin_memcpy(&bits, ins[c] + k, sizeof bits);
            bits &= withoutSign;
            largest = largest > bits ? largest : bits;
        }
        for (; k < numSamples; ++k) result = result && ins[c][k] <= limit && ins[c][k] >= -limit;
    }
    return result && AllZero(largest > highest);
}

/// Each lane keeps the nearest of its own points; of equally near ones in several lanes the first one counts.
std::size_t Nearest(float const* x, float const* y, float const* z, std::size_t numPoints, float toX, float toY,
                    float toZ) {
    const auto squaredDistance = [=](auto dx, auto dy, auto dz) { return dx * dx + dy * dy + dz * dz; };
    float least = squaredDistance(x[0] - toX, y[0] - toY, z[0] - toZ);
    if (least != least) return 0;
    std::size_t nearest = 0;
    Lanes leastOfLane = Lanes{} + least;
    LaneInts rowOfLane = LaneInts{} - 1;
    std::size_t i = 0;
    std::int32_t row = 0;
    for (; i + numLanes <= numPoints; i += numLanes, ++row) {
        const Lanes squared = squaredDistance(Load(x + i) - toX, Load(y + i) - toY, Load(z + i) - toZ);
        rowOfLane = squared < leastOfLane ? LaneInts{} + row : rowOfLane;
        leastOfLane = squared < leastOfLane ? squared : leastOfLane;
    }
    for (std::size_t lane = 0; lane < numLanes; ++lane) {
        if (rowOfLane[lane] < 0) continue;
        const std::size_t index = static_cast<std::size_t>(rowOfLane[lane]) * numLanes + lane;
        if (leastOfLane[lane] < least || (leastOfLane[lane] == least && index < nearest)) {
            least = leastOfLane[lane];
            nearest = index;
        }
    }
    for (; i < numPoints; ++i) {
        const float squared = squaredDistance(x[i] - toX, y[i] - toY, z[i] - toZ);
        if (squared < least) {
            least = squared;
            nearest = i;
        }
    }
    return nearest;
}

void Feedback(float* const* tapped, float* const* outputs, float const* const* inputs, std::size_t first,
              std::size_t numChannels, float inGain, float outGain, std::size_t numSamples) {
    for (std::size_t c = 0; c < numChannels; ++c) {
        float* const loop = tapped[c];
        float* const output = outputs[c] + first;
        float const* const input = inputs[c] + first;
        std::size_t k = 0;
        for (; k + numLanes <= numSamples; k += numLanes) {
            const Lanes x = Load(loop + k);
            const Lanes fed = x + inGain * Load(input + k);
            Store(output + k, x * outGain);
            Store(loop + k, fed);
        }
        for (; k < numSamples; ++k) {
            const float x = loop[k];
            const float fed = x + inGain * input[k];
            output[k] = x * outGain;
            loop[k] = fed;
        }
    }
}

/// Whether a chain of additions, `gain + step + step...`, goes in equal steps, so that it may be computed by a product.
///
/// Between two powers of two numbers lie equally far apart, and each sum is rounded to one of them: by the same amount
/// each time, if the step doesn't end in the middle between two of them, where the even one is taken. Products of the
/// step as it is `taken` are then exact.
/// @param last  behind the last addition, by the product: the chain passes no power of two if that lies between the two
///              that the gain lies between
template <typename Bits, typename Value>
inline auto GoesInEqualSteps(Value gain, Value step, Value taken, Value last) noexcept {
    constexpr auto withoutMantissa = static_cast<std::int32_t>(0xff800000u);
    constexpr float unitsInHalf = 16777216.0f;  // of a power of two: 2^24 halves of the last place
    Bits bits;
    __builtin_memcpy(&bits, &gain, sizeof bits);
    bits &= withoutMantissa;
    Value power;
    __builtin_memcpy(&power, &bits, sizeof power);
    const Value lost = (step - taken) * unitsInHalf;
    return ((last - power) * (2.0f * power - last) > 0.0f) & (lost != power) & (lost != -power);
}

struct SampleNumbers {
    constexpr SampleNumbers() noexcept : values() {
        for (int k = 0; k < gainRowLength; ++k) values[k] = static_cast<float>(k);
    }
    float values[gainRowLength];
};
constexpr SampleNumbers sampleNumbers;

/// Writes whole registers.
inline void FillInEqualSteps(float* row, float gain, float taken, std::size_t count) noexcept {
    for (std::size_t k = 0; k < count; k += numLanes) Store(row + k, gain + Load(sampleNumbers.values + k) * taken);
}

/// A chain that passes a power of two: its halves, of which mostly one goes in equal steps.
/// @return the gain behind it
float FillInHalves(float* row, float gain, float step, std::size_t count) noexcept {
    const float taken = gain + step - gain;
    const float last = gain + static_cast<float>(count) * taken;
    if (GoesInEqualSteps<std::int32_t>(gain, step, taken, last)) {
        FillInEqualSteps(row, gain, taken, count);
        return last;
    }
    if (count <= numLanes) {
        for (std::size_t k = 0; k < count; ++k, gain += step) row[k] = gain;
        return gain;
    }
    const std::size_t half = (count / 2 + numLanes - 1) / numLanes * numLanes;
    gain = FillInHalves(row, gain, step, half);
    return FillInHalves(row + half, gain, step, count - half);
}

void ComputeGainRamps(GainRamps const& ramps, std::size_t numRamps, GainSection const& section, float* rows,
                      std::size_t numSamples) {
    for (std::size_t first = 0; first < numRamps; first += numLanes) {
        const Lanes start = Load(ramps.starts + first);
        const Lanes slope = Load(ramps.slopes + first);
        const Lanes begin = section.begin * slope + start;
        const Lanes end = section.end * slope + start;
        const Lanes step = section.numSteps > 0.0f ? (end - begin) / section.numSteps : Lanes{};
        const Lanes gain = section.isFirst ? begin : Load(ramps.gains + first);
        const Lanes taken = gain + step - gain;
        const Lanes last = gain + static_cast<float>(numSamples) * taken;
        const LaneInts equal = GoesInEqualSteps<LaneInts>(gain, step, taken, last);
        Store(ramps.gains + first, last);
        float gains[numLanes], steps[numLanes], takenOf[numLanes];
        Store(gains, gain);
        Store(steps, step);
        Store(takenOf, taken);
        const std::size_t number = Least(numLanes, numRamps - first);
        for (std::size_t lane = 0; lane < number; ++lane) {
            float* const row = rows + (first + lane) * gainRowLength;
            if (equal[lane] != 0)
                FillInEqualSteps(row, gains[lane], takenOf[lane], numSamples);
            else
                ramps.gains[first + lane] = FillInHalves(row, gains[lane], steps[lane], numSamples);
        }
    }
}

/// Mixes numRows registers of an output that begin at a sample; the output is touched once, however many terms there
/// are. A sum that replaces what was there begins at -0, added to which every number stays what it is.
template <std::size_t numRows, bool hasOwn>
inline void MixRows(float* output, MixSources const& sources, MixTerm const* terms, MixTerm const* end,
                    std::size_t first, bool replace) noexcept {
    Lanes sums[numRows];
#pragma GCC unroll 4
    for (std::size_t row = 0; row < numRows; ++row)
        sums[row] = replace ? -Lanes{} : Load(output + first + row * numLanes);
    for (MixTerm const* term = terms; term != end; ++term) {
        float const* const input = sources.inputs[term->input] + sources.first + first;
        const auto load = [&](std::size_t row) {
            return hasOwn ? Load(input + row * numLanes) * sources.own[term->input] : Load(input + row * numLanes);
        };
        if (term->row == MixTerm::steady) {
#pragma GCC unroll 4
            for (std::size_t row = 0; row < numRows; ++row) sums[row] += load(row) * term->gain;
        } else {
            float const* const gains = sources.gains + term->row * std::ptrdiff_t{gainRowLength} + first;
#pragma GCC unroll 4
            for (std::size_t row = 0; row < numRows; ++row) sums[row] += load(row) * Load(gains + row * numLanes);
        }
    }
#pragma GCC unroll 4
    for (std::size_t row = 0; row < numRows; ++row) Store(output + first + row * numLanes, sums[row]);
}

template <bool hasOwn>
void MixInto(float* output, MixSources const& sources, MixTerm const* terms, MixTerm const* end, std::size_t numSamples,
             bool replace) noexcept {
    if (terms == end) return;
    constexpr std::size_t numRows = 4;
    std::size_t k = 0;
    for (; k + numRows * numLanes <= numSamples; k += numRows * numLanes)
        MixRows<numRows, hasOwn>(output, sources, terms, end, k, replace);
    for (; k + numLanes <= numSamples; k += numLanes) MixRows<1, hasOwn>(output, sources, terms, end, k, replace);
    for (; k < numSamples; ++k) {
        float sum = replace ? -0.0f : output[k];
        for (MixTerm const* term = terms; term != end; ++term) {
            auto const& [input, row, gain] = *term;
            const float x = sources.inputs[input][sources.first + k];
            sum += (hasOwn ? x * sources.own[input] : x) *
                   (row == MixTerm::steady
                        ? gain
                        : sources.gains[row * std::ptrdiff_t{gainRowLength} + static_cast<std::ptrdiff_t>(k)]);
        }
        output[k] = sum;
    }
}

void MixTerms(float* const* outputs, std::size_t first, std::size_t numOutputs, MixSources const& sources,
              MixTerm const* terms, std::size_t begin, std::size_t const* ends, std::size_t numSamples, bool replace) {
    for (std::size_t j = 0; j < numOutputs; ++j) {
        (sources.own != nullptr ? MixInto<true> : MixInto<false>)(outputs[j] + first, sources, terms + begin,
                                                                  terms + ends[j], numSamples, replace);
        begin = ends[j];
    }
}

/// The butterflies of distances from `half` down to `last`, over all groups.
template <typename Value>
inline void ButterfliesInLoops(Value* v, std::size_t numChannels, std::size_t half, std::size_t last) noexcept {
    for (; half >= last; half /= 2) {
        for (std::size_t j = 0; j < numChannels; ++j) {
            if ((j & half) != 0) continue;
            const Value a = v[j];
            const Value b = v[j + half];
            v[j] = a + b;
            v[j + half] = a - b;
        }
    }
}

/// Up to so many channels the compiler sees each index. More of them than registers hold take loops.
constexpr std::size_t mostInRegisters = 16;

/// Butterflies over N channels.
template <std::size_t N>
inline void Butterflies(Lanes* v) noexcept {
    if constexpr (N > mostInRegisters) {
        ButterfliesInLoops(v, N, N / 2, mostInRegisters);
        for (std::size_t first = 0; first < N; first += mostInRegisters) Butterflies<mostInRegisters>(v + first);
    } else if constexpr (N > 1) {
        constexpr std::size_t half = N / 2;
#pragma GCC unroll 16
        for (std::size_t j = 0; j < half; ++j) {
            const Lanes a = v[j];
            const Lanes b = v[j + half];
            v[j] = a + b;
            v[j + half] = a - b;
        }
        Butterflies<half>(v);
        Butterflies<half>(v + half);
    }
}

/// Whole registers of samples.
/// @param targets  of the mixed channels, in natural order
/// @return the number of samples
template <std::size_t N, std::size_t numGroups = 1>
std::size_t RunHadamard(float* const* targets, float const* const* inputs, float scale, std::size_t numSamples) {
    constexpr std::size_t numChannels = N * numGroups;
    std::size_t k = 0;
    for (; k + numLanes <= numSamples; k += numLanes) {
        // Every channel of a sample is read before one is written: outputs may be inputs in any order.
        Lanes v[numChannels];
#pragma GCC unroll 16
        for (std::size_t c = 0; c < numChannels; ++c) v[c] = Load(inputs[c] + k);
#pragma GCC unroll 4
        for (std::size_t first = 0; first < numChannels; first += N) Butterflies<N>(v + first);
#pragma GCC unroll 16
        for (std::size_t c = 0; c < numChannels; ++c) Store(targets[c] + k, v[c] * scale);
    }
    return k;
}

void Hadamard(float* const* outputs, float const* const* inputs, std::size_t groupSize, std::size_t numGroups,
              unsigned int const* order, float scale, std::size_t numSamples) {
    const std::size_t numChannels = groupSize * numGroups;
    float* targets[64];
    for (std::size_t c = 0; c < numChannels; ++c) targets[order[c]] = outputs[c];
    const auto runOf = [groupSize] {
        switch (groupSize) {
            case 1:
                return RunHadamard<1>;
            case 2:
                return RunHadamard<2>;
            case 4:
                return RunHadamard<4>;
            case 8:
                return RunHadamard<8>;
            case 16:
                return RunHadamard<16>;
            case 32:
                return RunHadamard<32>;
            default:
                return RunHadamard<64>;
        }
    };
    // Of several groups three of four are what is in use; others go sample by sample.
    std::size_t k = 0;
    if (numGroups == 1) k = runOf()(targets, inputs, scale, numSamples);
    if (numGroups == 3 && groupSize == 4) k = RunHadamard<4, 3>(targets, inputs, scale, numSamples);
    for (; k < numSamples; ++k) {
        float mixed[64];
        for (std::size_t c = 0; c < numChannels; ++c) mixed[c] = inputs[c][k];
        ButterfliesInLoops(mixed, numChannels, groupSize / 2, 1);
        for (std::size_t c = 0; c < numChannels; ++c) targets[c][k] = mixed[c] * scale;
    }
}

}  // namespace
}  // namespace orvandsp::kernels
