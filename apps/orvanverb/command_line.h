#pragma once

#include <optional>

#include "orvanverb/options/options.h"

namespace program {

/// Reads the command line. Prints what --help and --version ask for.
/// @return none if there is nothing more to do
/// @throws UsageError that names the option, what is wrong and what would be right
std::optional<Options> ParseCommandLine(int argc, char const* const* argv);

}  // namespace program
