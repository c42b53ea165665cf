#pragma once

#include <span>
#include <string_view>

namespace live {

/// A file of the page, held in the program.
struct PageFile {
    std::string_view name, bytes;
};

extern const std::span<PageFile const> pageFiles;

}  // namespace live
