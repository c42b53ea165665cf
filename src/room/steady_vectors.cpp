#include "room/steady_vectors.h"

#include <bit>
#include <numeric>

namespace Lume {

namespace {

/// One pointer to each of so many arrays of a length that stand one behind the other.
std::vector<float*> Rows(std::vector<float>& samples, std::size_t number, std::size_t length) {
    samples.assign(number * length, 0.0f);
    std::vector<float*> rows(number);
    for (std::size_t i = 0; i < number; ++i) rows[i] = samples.data() + i * length;
    return rows;
}

}  // namespace

void SteadyVectors::Configure(std::size_t numInputs, std::size_t numOutputs, std::size_t newBlockSize, Blocks blocks,
                              std::size_t newVectorSize) {
    blockSize = newBlockSize;
    vectorSize = newVectorSize != 0
                     ? newVectorSize
                     : std::clamp(std::size_t{1} << std::countr_zero(blockSize), minVectorSize, maxVectorSize);
    // The rest of a vector that a block leaves behind is a multiple of their common divisor, so at most this much is
    // missing when a block is due.
    latency = vectorSize - (blocks == Blocks::Steady ? std::gcd(vectorSize, blockSize) : 1);
    filled = 0;
    waiting = latency;
    inputVectors = Rows(inputSamples, numInputs, vectorSize);
    queues = Rows(outputSamples, numOutputs, 2 * vectorSize + blockSize);
    inputsNow.assign(numInputs, nullptr);
    outputsNow.assign(numOutputs, nullptr);
}

void SteadyVectors::Clear() noexcept {
    std::fill(inputSamples.begin(), inputSamples.end(), 0.0f);
    std::fill(outputSamples.begin(), outputSamples.end(), 0.0f);
}

std::size_t SteadyVectors::Take(float const* const* inputs, std::size_t begin, std::size_t count) {
    const std::size_t taken = std::min(vectorSize - filled, count);
    for (std::size_t i = 0; i < inputVectors.size(); ++i)
        std::copy_n(inputs[i] + begin, taken, inputVectors[i] + filled);
    filled += taken;
    return taken;
}

void SteadyVectors::Give(float* const* outputs, std::size_t begin, std::size_t count) {
    const std::size_t ready = std::min(count, waiting), missing = count - ready;
    for (std::size_t i = 0; i < queues.size(); ++i) {
        float* const out = outputs[i] + begin;
        std::fill_n(out, missing, 0.0f);
        std::copy_n(queues[i], ready, out + missing);
        std::copy(queues[i] + ready, queues[i] + waiting, queues[i]);
    }
    waiting -= ready;
    latency += missing;
}

}  // namespace Lume
