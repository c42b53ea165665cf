#pragma once

#include <stdexcept>
#include <string>

namespace program {

/// What ends the program: one line for standard error, which names the file or option, says what is wrong with it and
/// what would be right, and the exit status.
class ProgramError : public std::runtime_error {
public:
    ProgramError(std::string const& message, int status) : std::runtime_error(message), exitStatus(status) {}
    int ExitStatus() const noexcept { return exitStatus; }

private:
    int exitStatus;
};

/// A failure at work: a file that can't be read or written, or whose content is wrong.
struct WorkError : ProgramError {
    explicit WorkError(std::string const& message) : ProgramError(message, 1) {}
};

/// A wrong command line.
struct UsageError : ProgramError {
    explicit UsageError(std::string const& message) : ProgramError(message, 2) {}
};

}  // namespace program
