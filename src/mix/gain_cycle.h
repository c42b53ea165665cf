#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "dsp/audio_buffer.h"
#include "kernels/kernels.h"

namespace Lume {

/// Mixes N inputs into M outputs through a matrix of gains, and changes the gains without clicks.
///
/// Time runs in cycles of a fixed length, whether anything changes or not. What is requested during a cycle becomes the
/// target when the cycle ends, and the gains then move in a straight line to it during the next one: a change begins to
/// be heard after at most one cycle and is complete after at most two. Of several requests in one cycle the last
/// counts. All gains start at 0.
///
/// Requests belong to the control thread and may overlap the mixing; SetLength and SetPosition may not.
class GainCycle {
public:
    /// Length of a new cycle [s].
    static constexpr float DefaultLengthSeconds = 0.030000001f;

    /// Room for a matrix of numInputs x numOutputs gains, row by row; the mixing may use a smaller one.
    GainCycle(unsigned int numInputs, unsigned int numOutputs);

    /// Cuts to whole samples. A cycle has at least one sample, so that the mixing always moves on. The position stays:
    /// where it is beyond the new end, the next cycle begins with the next block.
    void SetLength(float samples);
    /// Cuts to whole samples, from 0 on.
    void SetPosition(float samples);
    std::int32_t GetLength() const noexcept { return length; }
    std::int32_t GetPosition() const noexcept { return position; }

    /// Mixes a block and leaves every output defined: clears them if no input is active, and the cycle then stands
    /// still. Works in place. Real-time safe.
    /// @param numInputs, numOutputs  the matrix in use, with numOutputs gains to the row
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs,
                 unsigned int numInputs, unsigned int numOutputs);

    /// Adds the mix of a block to the outputs. The cycle goes on without an active input. Works in place. Real-time
    /// safe.
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs,
                       unsigned int numInputs, unsigned int numOutputs);

    std::vector<float> requestedGains;  // what setters write, read at the end of a cycle only

    /// The gains at which the running cycle ends.
    std::vector<float> const& GetTargetGains() const noexcept { return targetGains; }

private:
    struct Mix;
    struct Part;
    void Run(Mix const& mix, unsigned long numSamples);
    void MixChunk(Mix const& mix, unsigned long offset, std::int32_t numSamples);
    void ListTerms(Mix const& mix);
    void MixPart(Mix const& mix, Part const& part);
    void Roll();

    std::vector<float> startGains;  // the gains at which the running cycle began
    std::vector<float> targetGains;
    std::vector<std::vector<float>> inputCopies;  // of a part of a chunk, so that outputs may be the inputs

    /// What the terms were listed for, beside the active inputs.
    struct ListKey {
        unsigned int numInputs, numOutputs;
        bool replace;
        bool operator==(ListKey const&) const = default;
    };
    std::optional<ListKey> listedFor;  // empty when a cycle begins
    std::vector<short> listedInputs;
    std::vector<orvandsp::kernels::MixTerm> terms;  // by output, then by input
    std::vector<std::size_t> termsEnd;              // behind those of each output
    // The gains that slide, in the order of the terms.
    std::vector<float> rampStarts, rampSlopes;
    std::vector<float> rampGains;  // in the middle of a chunk
    /// Outputs whose sliding gains are computed at once.
    struct RampBatch {
        unsigned int endOutput;
        std::size_t firstRamp, numRamps;
    };
    std::vector<RampBatch> batches;
    orvandsp::AudioBuffer movingGains;  // of a batch
    std::int32_t position = 0;          // samples of the running cycle that are done
    std::int32_t length = 1;            // [samples]
    float inverseLength = 1.0f;
};

}  // namespace Lume
