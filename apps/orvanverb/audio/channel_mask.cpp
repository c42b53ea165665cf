#include "orvanverb/audio/channel_mask.h"

#include <array>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace program {

namespace {

/// Moves to the content of a chunk in front of the samples and returns its size; 0 if there is none.
std::uint32_t SeekChunk(std::fstream& file, std::string_view name) {
    std::array<char, 8> header{};
    for (file.seekg(12); file.read(header.data(), header.size());) {
        const std::string_view found(header.data(), 4);
        std::uint32_t size = 0;
        for (std::size_t i = 0; i < 4; ++i) size |= std::uint32_t{static_cast<unsigned char>(header[4 + i])} << (8 * i);
        if (found == name) return size;
        if (found == "data") break;
        file.seekg(size + size % 2, std::ios::cur);
    }
    return 0;
}

bool Overwrite(std::fstream& file, std::uint32_t offset, std::uint32_t value) {
    file.seekp(file.tellg() + std::streamoff{offset});
    for (int i = 0; i < 4; ++i) file.put(static_cast<char>(value >> (8 * i) & 0xFFu));
    return !!file.flush();
}

}  // namespace

void SetChannelMask(std::string const& path, std::uint32_t mask) {
    constexpr std::uint32_t maskOffset = 20;  // behind the beginning of the format chunk's content
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    if (SeekChunk(file, "fmt ") < maskOffset + 4 || !Overwrite(file, maskOffset, mask))
        throw std::runtime_error("its channel mask can't be set");
}

void ClearPeakTime(std::string const& path) {
    constexpr std::uint32_t timeOffset = 4;  // behind the version of the chunk
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    if (SeekChunk(file, "PEAK") >= timeOffset + 4 && !Overwrite(file, timeOffset, 0))
        throw std::runtime_error("its time stamp can't be cleared");
}

}  // namespace program
