#include "orvanverb/audio/vector_channels.h"

namespace program {

VectorChannels::VectorChannels(std::size_t channels, std::size_t numSamples) : samples(channels * numSamples, 0.0f) {
    for (std::size_t c = 0; c < channels; ++c) pointers.push_back(samples.data() + c * numSamples);
}

void AppendInterleaved(std::vector<float>& interleaved, float const* const* channels, std::size_t numChannels,
                       std::size_t frames) {
    const std::size_t begin = interleaved.size();
    interleaved.resize(begin + frames * numChannels);
    for (std::size_t c = 0; c < numChannels; ++c)
        for (std::size_t i = 0; i < frames; ++i) interleaved[begin + i * numChannels + c] = channels[c][i];
}

}  // namespace program
