#pragma once

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <memory>

namespace live {

/// Peaks of some channels: one thread adds, another one takes.
class LevelMeter {
public:
    explicit LevelMeter(std::size_t newNumChannels)
        : numChannels(newNumChannels), peaks(new std::atomic<float>[newNumChannels]) {
        for (std::size_t i = 0; i < numChannels; ++i) peaks[i] = 0.0f;
    }

    std::size_t NumChannels() const noexcept { return numChannels; }

    /// Real-time safe.
    void Add(float const* const* channels, std::size_t numSamples) noexcept {
        for (std::size_t i = 0; i < numChannels; ++i) {
            float peak = peaks[i].load(std::memory_order_relaxed);
            for (std::size_t n = 0; n < numSamples; ++n) peak = std::max(peak, std::abs(channels[i][n]));
            peaks[i].store(peak, std::memory_order_relaxed);
        }
    }

    /// The largest absolute sample since the last call.
    float Take(std::size_t channel) noexcept { return peaks[channel].exchange(0.0f, std::memory_order_relaxed); }

private:
    std::size_t numChannels;
    std::unique_ptr<std::atomic<float>[]> peaks;
};

}  // namespace live
