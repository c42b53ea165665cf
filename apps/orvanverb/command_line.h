#pragma once

#include "orvanverb/options/call.h"

namespace program {

/// Reads the command line. Prints what --help and --version ask for.
/// @throws UsageError that names the option, what is wrong and what would be right
Call ParseCommandLine(int argc, char const* const* argv);

}  // namespace program
