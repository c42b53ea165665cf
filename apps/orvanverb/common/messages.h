#pragma once

#include <string>

namespace program {

/// Writes a line to standard error.
void Say(std::string const& line);

}  // namespace program
