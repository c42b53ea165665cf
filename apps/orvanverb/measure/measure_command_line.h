#pragma once

namespace CLI {
class App;
}

namespace program {

struct Options;

/// Adds the command measure to the parser, to be read into options.
/// @throws UsageError from its callback
CLI::App* AddMeasureCommand(CLI::App& app, Options& options);

}  // namespace program
