#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace program {

/// What could stand at the end of a line that is being typed into a shell: messages, attributes, the shell's own words,
/// and what some of them take.
/// @param before  the line in front of the word, empty at its beginning
/// @param word    what is there of it
/// @return whole words, in alphabetical order
std::vector<std::string> WordsThatFit(std::string_view before, std::string_view word);

/// What `help` says on a terminal, lines with their ends.
/// @param name  of a message, an attribute or a word of the shell; empty for all of it
std::string ShellHelp(std::string_view name);

}  // namespace program
