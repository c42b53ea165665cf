#pragma once

#include <random>
#include <vector>

/// Uniform white noise between -1 and 1: the same for a seed on every platform.
inline std::vector<float> MakeNoise(std::size_t length, unsigned int seed) {
    std::mt19937 generator(seed);
    std::vector<float> noise(length);
    for (float& x : noise) x = static_cast<float>(generator() >> 8) / 8388608.0f - 1.0f;
    return noise;
}
