#include "room/steady_vectors.h"

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
        Lume::SteadyVectors vectors;
        vectors.Configure(numChannels, numChannels, blockSize);
        EXPECT_EQ(vectors.VectorSize(), vectorSize) << blockSize;
        EXPECT_EQ(vectors.Latency(), latency) << blockSize;

        std::vector<float> kept(vectorSize);
        const auto copy = [&kept](float* const* outputs, float const* const* inputs) {
            std::copy_n(inputs[0], kept.size(), kept.data());
            std::copy_n(inputs[1], kept.size(), outputs[1]);
            std::copy_n(kept.data(), kept.size(), outputs[0]);
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
            vectors.Process(outputs, inputs, blockSize, copy);
            ASSERT_EQ(AllocationCount(), before);
            for (std::size_t c = 0; c < numChannels; ++c)
                for (std::size_t i = 0; i < blockSize; ++i)
                    wrong += outputs[c][i] !=
                             SampleAt(c, static_cast<std::ptrdiff_t>(begin + i) - static_cast<std::ptrdiff_t>(latency));
        }
        EXPECT_EQ(wrong, 0u) << blockSize;
    }
}

// Hosts cut blocks at their automation, and at the end of a loop. Red if a block of another size loses or doubles a
// sample: behind the latency that is told, the signal comes without a gap.
TEST(SteadyVectors, BlocksOfVaryingSizesKeepTheirSamples) {
    Lume::SteadyVectors vectors;
    vectors.Configure(1, 1, 96, Lume::SteadyVectors::Blocks::Varying, 64);
    EXPECT_EQ(vectors.Latency(), 63u);
    std::ptrdiff_t time = 0;
    std::vector<float> block(200);
    for (const std::size_t size : {96u, 1u, 64u, 33u, 200u, 7u, 64u, 63u, 95u, 2u}) {
        for (std::size_t i = 0; i < size; ++i) block[i] = SampleAt(0, time + static_cast<std::ptrdiff_t>(i));
        float* const samples = block.data();
        vectors.Process(&samples, &samples, size, [](float* const* outputs, float const* const* inputs) {
            std::copy_n(inputs[0], 64, outputs[0]);
        });
        for (std::size_t i = 0; i < size; ++i) EXPECT_EQ(block[i], SampleAt(0, time++ - 63)) << size;
    }
    EXPECT_EQ(vectors.Latency(), 63u);
}

// Red if a short block among steady ones, which need no latency, reads what isn't there: silence comes before it.
TEST(SteadyVectors, AShortBlockAmongSteadyOnesCostsLatency) {
    Lume::SteadyVectors vectors;
    vectors.Configure(1, 1, 64);
    const auto copy = [](float* const* outputs, float const* const* inputs) { std::copy_n(inputs[0], 64, outputs[0]); };
    std::vector<float> block(64, 1.0f);
    float* const samples = block.data();
    vectors.Process(&samples, &samples, 10, copy);
    EXPECT_EQ(std::vector<float>(block.begin(), block.begin() + 10), std::vector<float>(10, 0.0f));
    EXPECT_EQ(vectors.Latency(), 10u);
    std::fill(block.begin(), block.end(), 2.0f);
    vectors.Process(&samples, &samples, 64, copy);
    EXPECT_EQ(block[0], 1.0f);
    EXPECT_EQ(block[9], 1.0f);
    EXPECT_EQ(block[10], 2.0f);
}
