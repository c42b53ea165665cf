#pragma once

#include <functional>
#include <span>
#include <string>

namespace program {

/// Reads a text file of one statement a line: calls `take` with the words of each line that holds any. What follows a
/// # is a comment.
/// @throws WorkError "FILE: why" when the file can't be read, and "FILE:LINE: why" when `take` throws
///         std::invalid_argument
void ReadLineFile(std::string const& path, std::function<void(std::span<std::string const> words)> const& take);

}  // namespace program
