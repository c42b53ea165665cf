#include "orvanverb/common/complete_file.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "orvanverb/common/program_error.h"

namespace program {

namespace {

std::uint64_t ReadNumber(char const* bytes, int count, bool bigEndian) {
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[bigEndian ? i : count - 1 - i]);
    return value;
}

/// Streams through pipes leave a placeholder where the length belongs: all ones, or the largest that fits with a header
/// taken off.
bool IsPlaceholder(std::uint64_t size) {
    constexpr std::uint64_t slack = 4096;
    return (size <= 0xFFFFFFFFu && size >= 0xFFFFFFFFu - slack) || (size <= 0x80000000u && size >= 0x80000000u - slack);
}

}  // namespace

void RequireCompleteFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 12> form{};
    if (!file.read(form.data(), form.size())) return;
    const std::string_view kind(form.data(), 4);
    const bool bigEndian = kind == "FORM" || kind == "RIFX";
    const bool is64 = kind == "RF64";
    if (!bigEndian && !is64 && kind != "RIFF") return;

    const std::uint64_t fileSize = std::filesystem::file_size(path);
    std::uint64_t dataSize64 = 0;
    std::uint64_t position = form.size();
    std::array<char, 8> header{};
    while (position + header.size() <= fileSize && file.seekg(static_cast<std::streamoff>(position)) &&
           file.read(header.data(), header.size())) {
        const std::string_view name(header.data(), 4);
        std::uint64_t size = ReadNumber(header.data() + 4, 4, bigEndian);
        position += header.size();
        if (name == "ds64") {
            std::array<char, 16> sizes{};
            if (file.read(sizes.data(), sizes.size())) dataSize64 = ReadNumber(sizes.data() + 8, 8, false);
        }
        const bool isSound = name == "data" || name == "SSND";
        if (isSound && is64 && size == 0xFFFFFFFFu)
            size = dataSize64;
        else if (isSound && (IsPlaceholder(size) || size == 0))
            return;
        if (size > fileSize - position)
            throw WorkError(path + ": is cut off: its '" + std::string(name) + "' chunk announces " +
                            std::to_string(size) + " bytes, " + std::to_string(fileSize - position) + " are there");
        if (isSound) return;  // what stands behind the sound isn't needed
        position += size + size % 2;
    }
}

}  // namespace program
