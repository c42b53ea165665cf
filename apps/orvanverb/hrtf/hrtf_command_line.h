#pragma once

#include "orvanverb/options/options.h"

namespace CLI {
class App;
}

namespace program {

/// Adds the command "hrtf" to the parser, which then fills the options or throws UsageError.
CLI::App* AddHrtfCommand(CLI::App& app, Options& options);

}  // namespace program
