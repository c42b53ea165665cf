#pragma once

#include <functional>
#include <string>

/// How the program lets the engine read its files: a failure is one line of the program's.
namespace program {

/// A name without the right extension would stand for the built-in set, and a missing file would be told in the
/// engine's words.
/// @param extensions  in words, as ".hrtf or .coll"; the name must end in one of them
/// @throws WorkError that names the file
void RequireSetFile(std::string const& path, std::string const& extensions);

/// Runs a loader of the engine. Nothing that it writes on standard error gets through.
/// @throws WorkError that names the file
void LoadQuietly(std::string const& path, std::function<void()> const& load);

}  // namespace program
