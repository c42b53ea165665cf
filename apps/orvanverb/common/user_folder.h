#pragma once

#include <filesystem>

namespace program {

/// The program's own folder among those of a kind that a user has.
/// @param variable  of the environment, which counts only if it holds an absolute path: "XDG_CACHE_HOME"
/// @param usual     what stands for it below the home: ".cache"
/// @return empty if the environment names neither; it need not be there yet
std::filesystem::path UserFolder(char const* variable, char const* usual);

}  // namespace program
