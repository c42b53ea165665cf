#include "common/steady_vectors.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace plugin {

namespace {

/// Copies samples, 0 in place of those that aren't finite.
/// @return how many were replaced
std::size_t CopyFinite(float const* from, float* to, std::size_t count) {
    std::size_t replaced = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const bool finite = std::fabs(from[i]) <= std::numeric_limits<float>::max();
        to[i] = finite ? from[i] : 0.0f;
        replaced += finite ? 0 : 1;
    }
    return replaced;
}

/// One pointer to each of so many arrays of a length that stand one behind the other.
std::vector<float*> Rows(std::vector<float>& samples, std::size_t number, std::size_t length) {
    samples.assign(number * length, 0.0f);
    std::vector<float*> rows(number);
    for (std::size_t i = 0; i < number; ++i) rows[i] = samples.data() + i * length;
    return rows;
}

}  // namespace

void SteadyVectors::Configure(std::size_t numInputs, std::size_t numOutputs, std::size_t newBlockSize) {
    blockSize = newBlockSize;
    vectorSize = std::max(minVectorSize, std::size_t{1} << std::countr_zero(blockSize));
    // The rest of a vector that a block leaves behind is a multiple of their common divisor, so at most this much is
    // missing when a block is due.
    latency = vectorSize - std::gcd(vectorSize, blockSize);
    filled = 0;
    waiting = latency;
    vectors = Rows(inputSamples, numInputs, vectorSize);
    queues = Rows(outputSamples, numOutputs, latency + blockSize + vectorSize);
    ends = queues;
}

void SteadyVectors::Process(float const* const* inputs, float* const* outputs, Processor const& processor) {
    for (std::size_t done = 0; done < blockSize;) {
        const std::size_t count = std::min(vectorSize - filled, blockSize - done);
        Take(inputs, done, count);
        done += count;
        filled += count;
        if (filled < vectorSize) break;
        std::transform(queues.begin(), queues.end(), ends.begin(), [this](float* queue) { return queue + waiting; });
        processor(vectors.data(), ends.data());
        waiting += vectorSize;
        filled = 0;
    }
    // All inputs are read by now, so outputs may lie on them.
    for (std::size_t i = 0; i < queues.size(); ++i) {
        std::copy_n(queues[i], blockSize, outputs[i]);
        std::copy(queues[i] + blockSize, queues[i] + waiting, queues[i]);
    }
    waiting -= blockSize;
}

void SteadyVectors::Take(float const* const* inputs, std::size_t begin, std::size_t count) {
    for (std::size_t i = 0; i < vectors.size(); ++i)
        numReplaced += CopyFinite(inputs[i] + begin, vectors[i] + filled, count);
}

}  // namespace plugin
