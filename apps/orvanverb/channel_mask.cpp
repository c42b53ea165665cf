#include "orvanverb/channel_mask.h"

#include <array>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace program {

void SetChannelMask(std::string const& path, std::uint32_t mask) {
    constexpr std::uint32_t maskOffset = 20;  // behind the beginning of the format chunk's content
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    std::array<char, 8> header{};
    for (file.seekg(12); file.read(header.data(), header.size());) {
        std::uint32_t size = 0;
        for (std::size_t i = 0; i < 4; ++i) size |= std::uint32_t{static_cast<unsigned char>(header[4 + i])} << (8 * i);
        if (std::string_view(header.data(), 4) != "fmt ") {
            file.seekg(size + size % 2, std::ios::cur);
            continue;
        }
        if (size < maskOffset + 4) break;
        file.seekp(file.tellg() + std::streamoff{maskOffset});
        for (int i = 0; i < 4; ++i) file.put(static_cast<char>(mask >> (8 * i) & 0xFFu));
        if (file.flush()) return;
        break;
    }
    throw std::runtime_error("its channel mask can't be set");
}

}  // namespace program
