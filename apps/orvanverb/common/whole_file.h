#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "orvanverb/common/part_file.h"

namespace program {

/// A file that is written in one go: as a PartFile, of bytes that are all there. Made before long work, it tells at
/// once that the place can't be written.
class WholeFile {
public:
    /// @throws WorkError that names the file
    explicit WholeFile(std::string path) : part(std::move(path)) {}

    /// Writes all that the file holds and gives it its name.
    /// @throws WorkError that names the file
    void Write(std::string_view bytes);

private:
    PartFile part;
};

}  // namespace program
