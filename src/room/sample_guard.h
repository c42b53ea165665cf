#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lume {

/// Keeps samples out of a room that would never leave it again: those that aren't finite, and those so large that they
/// overflow inside. Such inputs become 0 and are counted.
class SampleGuard {
public:
    /// The largest magnitude that passes, 120 dB above full scale.
    static constexpr float maxSample = 1e6f;

    /// Makes room. Allocates.
    void Configure(std::size_t numInputs, std::size_t vectorSize);

    /// Points each input that holds such samples to a copy in which they are 0. Real-time safe.
    /// @param inputs  one pointer to a vector per input
    void Check(float const** inputs) noexcept;

    /// How many samples became 0, in all.
    std::uint64_t NumReplaced() const noexcept { return numReplaced; }

    /// How many samples of an array are such. Real-time safe.
    static std::size_t Count(float const* samples, std::size_t numSamples) noexcept;

private:
    std::size_t numInputs = 0, vectorSize = 0;
    std::vector<float> copies;  // a vector per input
    std::uint64_t numReplaced = 0;
};

/// Looks at what leaves a room, a panner, anything that may have run away: a vector that holds such samples becomes
/// silence, and so does what comes behind it until the sound has faded in again, in a tenth of a second. Whoever made
/// the sound is to be emptied meanwhile.
class OutputGuard {
public:
    /// @param samplerate  [Hz]
    void Configure(float samplerate) noexcept;

    /// Looks at a vector, and changes it. Real-time safe.
    /// @return whether it was bad
    bool Check(float* const* outputs, std::size_t numOutputs, std::size_t numSamples) noexcept;

    /// How many samples were bad, in all.
    std::uint64_t NumBad() const noexcept { return numBad; }

private:
    float step = 1.0f;  // of the gain, per sample
    float gain = 1.0f;  // below 1: fades in
    std::uint64_t numBad = 0;
};

}  // namespace Lume
