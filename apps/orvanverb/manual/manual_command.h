#pragma once

#include "orvanverb/options/call.h"

namespace CLI {
class App;
}

namespace program {

/// Adds the command manual, which writes what the option tables of all commands say: as man pages, as a completion for
/// bash, and as tables for documents. Packages and docs/program.md are made by it, so that they can't differ from what
/// the parser knows.
void AddManualCommand(CLI::App& app, Call& call);

}  // namespace program
