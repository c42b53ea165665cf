#pragma once

#include "orvanverb/options/options.h"

namespace CLI {
class App;
}

namespace program {

/// Add the commands "render" and "ir" to the parser, which then fill the options or throw UsageError.
CLI::App* AddRenderCommand(CLI::App& app, Options& options);
CLI::App* AddImpulseResponseCommand(CLI::App& app, Options& options);

}  // namespace program
