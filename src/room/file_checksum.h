#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace Lume {

/// FNV-1a of 64 bits: tells contents apart that nobody forges.
std::uint64_t Checksum(std::string_view bytes);

/// The same of a file's bytes.
/// @throws std::runtime_error "FILE: can't be read"
std::uint64_t FileChecksum(std::filesystem::path const& file);

}  // namespace Lume
