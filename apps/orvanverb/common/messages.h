#pragma once

#include <string>
#include <vector>

/// What the program tells on standard error beside errors.
namespace program {

/// Writes a line that is good to know.
void Say(std::string const& line);

/// Writes a line about something that may not be as it was meant. Other than Say it is heard when all is to be quiet.
void Warn(std::string const& line);

/// What was warned of so far, for summaries.
std::vector<std::string> const& Warnings();

/// From now on there are warnings and errors alone: no other lines, no progress.
void BeQuiet();
bool IsQuiet();

}  // namespace program
