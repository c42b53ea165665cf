#pragma once

#include <span>
#include <string>
#include <vector>

#include "orvanverb/options/options.h"

namespace program {

/// Whether there is a control of that name, or a group of them, as an attribute of the object has it.
bool IsControl(std::string const& name);

/// Checks a control of the room, or a group of them, before the object gets it. The object would bring a value that is
/// out of range into it without a word; who writes a preset should know.
/// @throws std::invalid_argument that says what is wrong: an unknown name, a wrong count of values, a value that is
///         no number or outside its range
void CheckControl(std::string const& name, std::span<std::string const> values);

/// Reads a preset: a file with one NAME VALUE... a line.
/// @throws WorkError that names file and line
std::vector<Options::Setting> LoadPreset(std::string const& path);

}  // namespace program
