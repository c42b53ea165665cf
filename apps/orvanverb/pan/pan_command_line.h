#pragma once

#include "orvanverb/options/call.h"

namespace CLI {
class App;
}

namespace program {

/// The parser throws UsageError from the callback.
void AddPanCommand(CLI::App& app, Call& call);

}  // namespace program
