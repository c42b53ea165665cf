#include "room/file_checksum.h"

#include <fstream>
#include <stdexcept>

namespace Lume {

namespace {

constexpr std::uint64_t start = 14695981039346656037u;

std::uint64_t With(std::uint64_t sum, char byte) {
    return (sum ^ static_cast<unsigned char>(byte)) * 1099511628211u;
}

}  // namespace

std::uint64_t Checksum(std::string_view bytes) {
    std::uint64_t sum = start;
    for (const char byte : bytes) sum = With(sum, byte);
    return sum;
}

std::uint64_t FileChecksum(std::filesystem::path const& file) {
    std::ifstream stream(file, std::ios::binary);
    std::uint64_t sum = start;
    for (char byte = 0; stream.get(byte);) sum = With(sum, byte);
    if (!stream.eof()) throw std::runtime_error(file.string() + ": can't be read");
    return sum;
}

}  // namespace Lume
