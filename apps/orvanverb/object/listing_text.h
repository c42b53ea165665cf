#pragma once

#include <string>
#include <vector>

namespace program {

using TextRows = std::vector<std::vector<std::string>>;

/// A table for people: every column as wide as its widest word.
std::string AlignedText(TextRows const& rows);

/// Words with a text between each two.
std::string Join(std::vector<std::string> const& words, char const* between);

/// A JSON string; null for an empty text.
std::string JsonText(std::string const& text);

}  // namespace program
