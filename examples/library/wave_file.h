#pragma once

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

/// Writes channels of equal length as a WAV file of 32-bit float samples. On a little-endian processor.
inline bool WriteWave(std::string const& path, std::vector<std::vector<float>> const& channels, std::uint32_t rate) {
    const auto numChannels = static_cast<std::uint32_t>(channels.size());
    const std::size_t numFrames = channels[0].size();
    const auto size = static_cast<std::uint32_t>(numFrames * numChannels * sizeof(float));
    const std::uint32_t header[] = {0x46464952,
                                    size + 36,
                                    0x45564157,
                                    0x20746d66,
                                    16,
                                    3 | numChannels << 16,
                                    rate,
                                    rate * numChannels * 4,
                                    numChannels * 4 | 32u << 16,
                                    0x61746164,
                                    size};
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<char const*>(header), sizeof header);
    for (std::size_t i = 0; i < numFrames; ++i)
        for (auto const& channel : channels) file.write(reinterpret_cast<char const*>(&channel[i]), sizeof(float));
    return file.good();
}
