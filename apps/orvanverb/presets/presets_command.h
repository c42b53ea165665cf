#pragma once

namespace CLI {
class App;
}

namespace program {

struct Options;

/// Adds the command presets to the parser.
void AddPresetsCommand(CLI::App& app, Options& options);

/// Prints which rooms there are: their names, what was measured of them, and what they are.
/// @param json  with the decay times that their controls ask for, per octave
void ListPresets(bool json);

}  // namespace program
