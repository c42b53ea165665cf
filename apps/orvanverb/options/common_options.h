#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orvanverb/options/options.h"

namespace CLI {
class App;
}

/// Options that several commands have: added to a parser, which keeps their words, and then read.
namespace program {

/// The words of these options as typed, before they mean anything.
struct CommonWords {
    std::vector<std::string> sources;      // four to a source
    std::vector<std::string> orientation;  // three
    std::string order;
    std::string preset;
    std::vector<std::string> settings;  // NAME=VALUE
    std::string rate, format, gain, normalize, direct, room, tail, inTurn, vector;
};

/// Adds an option that takes one value; given several times, the last one counts.
/// @param kind  what the value is, in capitals
void AddValue(CLI::App& command, char const* names, std::string& value, char const* kind, std::string const& help);
void AddValue(CLI::App& command, char const* names, std::optional<std::string>& value, char const* kind,
              std::string const& help);

/// Adds output, rate, format, level, tail, vector, and what is told meanwhile.
/// @param tail  what it says about itself
void AddFileOptions(CLI::App& command, Options& options, CommonWords& words, char const* tail);

/// Adds the leave to replace files that are there.
void AddForce(CLI::App& command, Options& options);
/// How a command tells what it has done: --quiet, --json.
void AddSummary(CLI::App& command, Options& options);

/// Adds recordings, and how they follow one another.
void AddInputs(CLI::App& command, Options& options, CommonWords& words);

/// Adds places of sources, where the listener looks, and a scene that moves them.
void AddPlaces(CLI::App& command, Options& options, CommonWords& words);

/// Adds what the outputs are, what the room is and what is in it.
void AddRoom(CLI::App& command, Options& options, CommonWords& words);

/// Adds how many samples the engine takes at once.
void AddVector(CLI::App& command, CommonWords& words);

/// Adds ears of one's own.
void AddEars(CLI::App& command, Options& options);

/// Adds where the listener looks alone.
void AddOrientation(CLI::App& command, CommonWords& words);

/// Adds the order of ambisonic channels.
void AddOrder(CLI::App& command, CommonWords& words, char const* help);

/// @throws UsageError that names the option, what is wrong and what would be right
void TakeCommonMeaning(CommonWords const& words, Options& options);

}  // namespace program
