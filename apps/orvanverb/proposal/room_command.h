#pragma once

#include "orvanverb/options/call.h"

namespace CLI {
class App;
}

namespace program {

/// Adds the command room, which prints a proposal as a preset, as words or as a state, and what was measured of it on
/// standard error.
/// @throws UsageError from its callback
void AddRoomCommand(CLI::App& app, Call& call);

}  // namespace program
