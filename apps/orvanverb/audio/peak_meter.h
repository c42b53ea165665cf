#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace program {

/// Largest absolute sample of each channel, of all that came by and of the last block.
class PeakMeter {
public:
    explicit PeakMeter(std::size_t channels) : peaks(channels, 0.0f) {}

    void Add(float const* const* channels, std::size_t frames);

    std::vector<float> const& Peaks() const noexcept { return peaks; }  // linear
    float Loudest() const noexcept { return loudest; }                  // of all channels
    float LastBlock() const noexcept { return lastBlock; }              // of all channels in the last block

private:
    std::vector<float> peaks;
    float loudest = 0.0f;
    float lastBlock = 0.0f;
};

/// Level in decibels relative to full scale as text, "-inf" for 0.
std::string DecibelText(float linear);

}  // namespace program
