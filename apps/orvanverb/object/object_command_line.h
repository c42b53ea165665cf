#pragma once

#include "orvanverb/options/call.h"

namespace CLI {
class App;
}

namespace program {

/// Adds the commands about the object: shell, attributes, controls and reference.
void AddObjectCommands(CLI::App& app, Call& call);

}  // namespace program
