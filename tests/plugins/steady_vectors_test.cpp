#include "common/steady_vectors.h"

#include <gtest/gtest.h>

#include "support/allocation_count.h"

namespace {

constexpr std::size_t numChannels = 2;

/// The sample of a channel at a time; 0 before the beginning.
float SampleAt(std::size_t channel, std::ptrdiff_t time) {
    return time < 0 ? 0.0f : static_cast<float>(1000 * channel + 1) + static_cast<float>(time) / 16384.0f;
}

}  // namespace

// Red if a vector has another size, a sample is lost, doubled or late, or outputs are written before all inputs that
// share their memory are read: Pd hands the same arrays out for both.
TEST(SteadyVectors, EveryBlockSizeBecomesVectorsOfOneSize) {
    const std::tuple<std::size_t, std::size_t, std::size_t> sizes[] = {
        {1, 16, 15}, {2, 16, 14},   {8, 16, 8},  {16, 16, 0},   {24, 16, 8},    {48, 16, 0},
        {64, 64, 0}, {100, 16, 12}, {96, 32, 0}, {1000, 16, 8}, {4096, 4096, 0}};
    for (auto const& [blockSize, vectorSize, latency] : sizes) {
        plugin::SteadyVectors vectors;
        vectors.Configure(numChannels, numChannels, blockSize);
        EXPECT_EQ(vectors.VectorSize(), vectorSize) << blockSize;
        EXPECT_EQ(vectors.Latency(), latency) << blockSize;

        const plugin::SteadyVectors::Processor copy = [size = vectorSize](auto inputs, auto outputs) {
            for (std::size_t c = 0; c < numChannels; ++c) std::copy_n(inputs[c], size, outputs[c]);
        };
        std::vector<std::vector<float>> arrays(numChannels, std::vector<float>(blockSize));
        float const* inputs[] = {arrays[0].data(), arrays[1].data()};
        float* outputs[] = {arrays[1].data(), arrays[0].data()};  // crosswise
        std::size_t wrong = 0;
        for (std::size_t begin = 0; begin < 9000; begin += blockSize) {
            for (std::size_t c = 0; c < numChannels; ++c)
                for (std::size_t i = 0; i < blockSize; ++i)
                    arrays[c][i] = SampleAt(c, static_cast<std::ptrdiff_t>(begin + i));
            const long before = AllocationCount();
            vectors.Process(inputs, outputs, copy);
            ASSERT_EQ(AllocationCount(), before);
            for (std::size_t c = 0; c < numChannels; ++c)
                for (std::size_t i = 0; i < blockSize; ++i)
                    wrong += outputs[c][i] !=
                             SampleAt(c, static_cast<std::ptrdiff_t>(begin + i) - static_cast<std::ptrdiff_t>(latency));
        }
        EXPECT_EQ(wrong, 0u) << blockSize;
    }
}
