#pragma once

#include "orvanverb/options/options.h"

namespace CLI {
class App;
}

namespace program {

/// Adds the command "decode" to the parser, which then fills the options or throws UsageError.
CLI::App* AddDecodeCommand(CLI::App& app, Options& options);

}  // namespace program
