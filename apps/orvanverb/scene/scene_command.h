#pragma once

#include "orvanverb/options/call.h"

namespace CLI {
class App;
}

namespace program {

/// The command `scene`: checks scenes, and draws them.
void AddSceneCommand(CLI::App& app, Call& call);

}  // namespace program
