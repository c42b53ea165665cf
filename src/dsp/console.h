#pragma once

#include <string>

/// The few lines that the library writes for people: of data files that it can't read, and of buffers that differ.
namespace orvandsp {

enum class Console { output, error };

/// @param line  without a line end
using ConsoleWriter = void (*)(Console console, std::string const& line);

/// Takes the lines over. Before it is called they go to the standard streams; null brings that back. Call it while no
/// other thread uses the library.
void SetConsoleWriter(ConsoleWriter writer) noexcept;

/// Writes a line. Never called on the audio path.
void WriteToConsole(Console console, std::string const& line);

}  // namespace orvandsp
