#include "orvanverb/audio/vector_channels.h"

namespace program {

VectorChannels::VectorChannels(std::size_t channels, std::size_t numSamples) : samples(channels * numSamples, 0.0f) {
    for (std::size_t c = 0; c < channels; ++c) pointers.push_back(samples.data() + c * numSamples);
}

}  // namespace program
