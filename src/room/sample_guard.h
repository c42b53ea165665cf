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

}  // namespace Lume
