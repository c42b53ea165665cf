#pragma once

#include <functional>

namespace program {

/// What main does: runs a program and tells on standard error what ends it, as a line that begins with its name.
/// @param run  returns the exit status, or throws
/// @return the exit status: a ProgramError's own, 1 for any other, and for a standard output that couldn't be written
int RunProgram(char const* name, std::function<int()> const& run);

}  // namespace program
