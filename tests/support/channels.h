#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "dsp/signal_processing.h"
#include "support/allocation_count.h"
#include "support/signals.h"

/// Channels of samples with the pointers that Process takes.
struct Channels {
    Channels(std::size_t count, std::size_t samples, float value)
        : Channels(std::vector<std::vector<float>>(count, std::vector<float>(samples, value))) {}
    explicit Channels(std::vector<std::vector<float>> samples) : data(std::move(samples)) {
        for (auto& channel : data) pointers.push_back(channel.data());
    }
    Channels(Channels const& other) : Channels(other.data) {}
    std::vector<float*> From(std::size_t sample) const {
        std::vector<float*> result = pointers;
        for (float*& pointer : result) pointer += sample;
        return result;
    }
    std::vector<float>& operator[](std::size_t channel) { return data[channel]; }
    std::vector<std::vector<float>> data;
    std::vector<float*> pointers;
};

/// Noise, another one in each channel.
inline Channels NoiseChannels(std::size_t count, std::size_t samples, std::uint32_t seed = 1, float amplitude = 1.0f) {
    std::vector<std::vector<float>> data;
    for (std::uint32_t c = 0; c < count; ++c) data.push_back(MakeNoise(seed + c, samples, amplitude));
    return Channels(data);
}

/// Sends inputs through a block in pieces, without allocation once it knows their length. What it doesn't write is 9.
inline Channels Processed(orvandsp::SignalProcessing& processor, Channels const& in, std::size_t numOutputs,
                          std::size_t piece = 64, short const* active = orvandsp::allActiveInputs) {
    Channels out(numOutputs, in.data[0].size(), 9.0f);
    for (std::size_t i = 0; i < in.data[0].size(); i += piece) {
        std::vector<float*> ins = in.From(i), outs = out.From(i);
        const long before = AllocationCount();
        processor.Process(outs.data(), ins.data(), std::min(piece, in.data[0].size() - i), active);
        EXPECT_TRUE(i == 0 || AllocationCount() == before);
    }
    return out;
}

inline void ExpectSameBits(std::vector<std::vector<float>> const& a, std::vector<std::vector<float>> const& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t c = 0; c < a.size(); ++c) {
        ASSERT_EQ(a[c].size(), b[c].size());
        ASSERT_EQ(std::memcmp(a[c].data(), b[c].data(), a[c].size() * sizeof(float)), 0) << "channel " << c;
    }
}
