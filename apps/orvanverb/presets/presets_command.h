#pragma once

#include "orvanverb/options/call.h"

namespace CLI {
class App;
}

namespace program {

/// Adds the command presets, which prints what rooms there are: their names, what was measured of them, and what they
/// are; as JSON with the decay times that their controls ask for, per octave.
void AddPresetsCommand(CLI::App& app, Call& call);

}  // namespace program
