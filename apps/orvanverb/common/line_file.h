#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace program {

/// One line of a text file of one statement a line.
struct Line {
    int number;  ///< from 1
    std::vector<std::string> words;
};

/// The lines that hold any words. What follows a # is a comment.
/// @throws WorkError "FILE: why" when the file can't be read
std::vector<Line> ReadLines(std::string const& path);

/// How an error in a file begins: "FILE:LINE: ".
std::string At(std::string const& path, int line);

/// Calls `take` with the words of each of these lines.
/// @throws WorkError as ReadLines, and "FILE:LINE: why" when `take` throws std::invalid_argument
void ReadLineFile(std::string const& path, std::function<void(std::span<std::string const> words)> const& take);

}  // namespace program
