#pragma once

#include <string>
#include <string_view>

namespace program {

/// Writes a file that is small enough to be in memory. The bytes go to a file beside the wanted one, which takes its
/// name when all of them are there: what stands under the final name is whole, and an existing file stays as it was
/// until then.
/// @throws WorkError that names the file
void WriteWholeFile(std::string const& path, std::string_view bytes);

}  // namespace program
