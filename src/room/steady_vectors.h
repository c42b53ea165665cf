#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Lume {

/// Cuts the blocks of a host into vectors of one steady size, as the engine wants them.
///
/// The late field takes its loop lengths from the size of the calls: see OrvanVerb::Configure for what other sizes than
/// powers of two do to the decay.
///
/// The vector size that this class chooses is the largest power of two up to 8192 that divides the block size, if that
/// is at least 16: then vectors fill blocks without a rest, and run on the host's own arrays. Otherwise it is 16, and
/// outputs come Latency() samples late.
class SteadyVectors {
public:
    static constexpr std::size_t minVectorSize = 16, maxVectorSize = 8192;  ///< [samples]

    enum class Blocks {
        Steady,  ///< each of the size that was announced
        Varying  ///< of any size up to it; costs vectorSize - 1 samples of latency
    };

    /// Makes room and begins with silence. Allocates.
    /// @param blockSize   of the host [samples], 1 or more
    /// @param vectorSize  [samples], a power of two from minVectorSize to maxVectorSize; 0 chooses
    void Configure(std::size_t numInputs, std::size_t numOutputs, std::size_t blockSize, Blocks blocks = Blocks::Steady,
                   std::size_t vectorSize = 0);

    std::size_t BlockSize() const noexcept { return blockSize; }
    std::size_t VectorSize() const noexcept { return vectorSize; }
    /// How late outputs come [samples].
    std::size_t Latency() const noexcept { return latency; }

    /// Makes silence of all that waits. Real-time safe.
    void Clear() noexcept;

    /// Processes one block. Real-time safe, if the processor is.
    ///
    /// A block of another size than announced is taken as well. If less than it needs is ready then, silence stands
    /// before what is, and the latency has grown by that.
    /// @param outputs, inputs  one pointer per channel; may be the same arrays, in any order
    /// @param processor        called as processor(outputs, inputs) with one pointer to a vector per channel. The
    ///                         arrays may be the host's, so it reads all inputs before it writes an output
    template <class Processor>
    void Process(float* const* outputs, float const* const* inputs, std::size_t numSamples, Processor&& processor) {
        std::size_t done = 0;
        while (done < numSamples) {
            if (filled == 0 && waiting == 0 && numSamples - done >= vectorSize) {
                for (std::size_t i = 0; i < inputVectors.size(); ++i) inputsNow[i] = inputs[i] + done;
                for (std::size_t i = 0; i < queues.size(); ++i) outputsNow[i] = outputs[i] + done;
                processor(outputsNow.data(), inputsNow.data());
                done += vectorSize;
                continue;
            }
            const std::size_t piece = std::min(numSamples - done, blockSize);
            for (std::size_t taken = 0; taken < piece;) {
                taken += Take(inputs, done + taken, piece - taken);
                if (filled < vectorSize) break;
                for (std::size_t i = 0; i < inputVectors.size(); ++i) inputsNow[i] = inputVectors[i];
                for (std::size_t i = 0; i < queues.size(); ++i) outputsNow[i] = queues[i] + waiting;
                processor(outputsNow.data(), inputsNow.data());
                waiting += vectorSize;
                filled = 0;
            }
            Give(outputs, done, piece);
            done += piece;
        }
    }

private:
    /// Takes input samples into the present vector.
    /// @return how many
    std::size_t Take(float const* const* inputs, std::size_t begin, std::size_t count);
    /// Hands out the oldest that waits.
    void Give(float* const* outputs, std::size_t begin, std::size_t count);

    std::size_t blockSize = 0, vectorSize = 0, latency = 0;  // [samples]
    std::size_t filled = 0;                                  // of the present vector
    std::size_t waiting = 0;                                 // processed and not handed out yet
    std::vector<float> inputSamples, outputSamples;
    std::vector<float*> inputVectors;  // a vector each
    std::vector<float*> queues;        // outputs: what waits, oldest first
    std::vector<float const*> inputsNow;
    std::vector<float*> outputsNow;
};

}  // namespace Lume
