#pragma once

#include <cstddef>
#include <vector>

namespace program {

/// Silent channels of one length, planar, reached as the engine wants them.
class VectorChannels {
public:
    VectorChannels(std::size_t channels, std::size_t numSamples);
    float** Pointers() noexcept { return pointers.data(); }

private:
    std::vector<float> samples;
    std::vector<float*> pointers;
};

/// Appends planar samples in the order of files: one of each channel, then the next.
void AppendInterleaved(std::vector<float>& interleaved, float const* const* channels, std::size_t numChannels,
                       std::size_t frames);

}  // namespace program
