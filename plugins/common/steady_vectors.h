#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace plugin {

/// Cuts the blocks of a host into vectors of one steady size, as the engine wants them: its late field takes its time
/// structure from the size of the calls.
///
/// The vector size is the largest power of two that divides the block size, if that is at least 16: then vectors fill
/// blocks without a rest. Otherwise it is 16, and outputs come Latency() samples late. Input samples that aren't finite
/// go in as 0 and are counted: a single one would stay in the room for good.
class SteadyVectors {
public:
    static constexpr std::size_t minVectorSize = 16;  ///< [samples]

    /// What runs on one vector. Gets one pointer per channel.
    using Processor = std::function<void(float const* const* inputs, float* const* outputs)>;

    /// Makes room and begins with silence. Control thread.
    /// @param newBlockSize  of the host [samples], 1 or more
    void Configure(std::size_t numInputs, std::size_t numOutputs, std::size_t newBlockSize);

    std::size_t BlockSize() const noexcept { return blockSize; }
    std::size_t VectorSize() const noexcept { return vectorSize; }
    /// How late outputs come [samples].
    std::size_t Latency() const noexcept { return latency; }

    /// Processes one block of the host. Real-time safe, if the processor is.
    /// @param inputs, outputs  one pointer per channel; may be the same arrays, in any order
    void Process(float const* const* inputs, float* const* outputs, Processor const& processor);

    /// How many input samples were replaced, in all.
    std::uint64_t NumReplaced() const noexcept { return numReplaced; }

private:
    void Take(float const* const* inputs, std::size_t begin, std::size_t count);

    std::size_t blockSize = 0, vectorSize = 0, latency = 0;  // [samples]
    std::size_t filled = 0;                                  // of the present vector
    std::size_t waiting = 0;                                 // processed and not handed out yet
    std::vector<float> inputSamples, outputSamples;
    std::vector<float*> vectors;  // inputs: a vector each
    std::vector<float*> queues;   // outputs: what waits, oldest first
    std::vector<float*> ends;     // outputs: where the next vector goes
    std::uint64_t numReplaced = 0;
};

}  // namespace plugin
