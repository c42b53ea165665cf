#pragma once

#include <span>
#include <string>
#include <vector>

#include "orvanverb/options/options.h"

namespace program {

/// Checks a control of the room before the object gets it, by what the object's attributes say about themselves. The
/// object would bring a value that is out of range into it without a word; who writes a preset should know.
/// @throws std::invalid_argument that says what is wrong: an unknown name, a wrong count of values, a value that is
///         no number or outside its range
void CheckControl(std::string const& name, std::span<std::string const> values);

/// Reads a preset: a file with one NAME VALUE... a line.
/// @throws WorkError that names file and line
std::vector<Options::Setting> LoadPreset(std::string const& path);

}  // namespace program
