#pragma once

#include "orvanverb/hrtf/hrtf_commands.h"

namespace CLI {
class App;
}

namespace program {

/// Adds the command "hrtf" to the parser, which then fills the options or throws UsageError.
CLI::App* AddHrtfCommand(CLI::App& app, HrtfOptions& options);

}  // namespace program
