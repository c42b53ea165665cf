#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// Channels of samples with the pointers that Process takes.
struct Channels {
    Channels(std::size_t count, std::size_t samples, float value)
        : Channels(std::vector<std::vector<float>>(count, std::vector<float>(samples, value))) {}
    explicit Channels(std::vector<std::vector<float>> samples) : data(std::move(samples)) {
        for (auto& channel : data) pointers.push_back(channel.data());
    }
    std::vector<float*> From(std::size_t sample) const {
        std::vector<float*> result = pointers;
        for (float*& pointer : result) pointer += sample;
        return result;
    }
    std::vector<std::vector<float>> data;
    std::vector<float*> pointers;
};
