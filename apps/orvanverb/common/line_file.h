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

/// Calls `take` with each line that holds any words, one at a time: a file may be large. What follows a # is a comment.
/// @throws WorkError "FILE: why" when the file can't be read, "FILE:LINE: why" for what is no line of text
void ForEachLine(std::string const& path, std::function<void(Line&& line)> const& take);

/// How an error in a file begins: "FILE:LINE: ".
std::string At(std::string const& path, int line);

/// Calls `take` with the words of each of these lines.
/// @throws WorkError as ForEachLine, and "FILE:LINE: why" when `take` throws std::invalid_argument
void ReadLineFile(std::string const& path, std::function<void(std::span<std::string const> words)> const& take);

}  // namespace program
