#pragma once

#include <string>

namespace CLI {
class App;
}

/// What a parser's tables say, in the forms of others. A command is named by its words from the program's name on:
/// "orvanverb hrtf convert".
namespace program {

/// The source of a page of section 1, for man.
/// @param version  of the program, as the page's foot names it
std::string ManPage(CLI::App const& command, std::string const& words, std::string const& version);

/// Rows of a table in Markdown: positionals and options.
std::string OptionTable(CLI::App const& command);

/// A script for bash that completes commands, options, names of rooms, and files.
std::string BashCompletion(CLI::App const& program);

}  // namespace program
