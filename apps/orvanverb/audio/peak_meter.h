#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace program {

/// Largest absolute sample of each channel, of all that came by and of the last block, and where the loudest was.
class PeakMeter {
public:
    struct Place {
        std::size_t channel = 0;  // counted from 0
        std::uint64_t frame = 0;
    };

    explicit PeakMeter(std::size_t channels) : peaks(channels, 0.0f) {}

    void Add(float const* const* channels, std::size_t frames);

    /// Makes all that came by louder or softer.
    void Scale(float gain);

    std::vector<float> const& Peaks() const noexcept { return peaks; }  // linear
    float Loudest() const noexcept { return loudest; }                  // of all channels
    Place LoudestPlace() const noexcept { return place; }               // one of such samples
    float LastBlock() const noexcept { return lastBlock; }              // of all channels in the last block

private:
    std::vector<float> peaks;
    float loudest = 0.0f;
    float lastBlock = 0.0f;
    Place place;
    std::uint64_t numFrames = 0;
};

/// Level in decibels relative to full scale as text, "-inf" for 0.
std::string DecibelText(float linear);

}  // namespace program
