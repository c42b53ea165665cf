#pragma once

#include <exception>
#include <string>

namespace orvandsp {

/// The library's one exception: thrown for what it cannot carry on with, mainly bad data files. Never by the audio
/// path.
class OrvanDspException : public std::exception {
public:
    /// Also writes "OrvanDspException : FILE LINE : MESSAGE" to the console (dsp/console.h), so that a failure whose
    /// catcher stays silent leaves a trace.
    /// @param message  what went wrong; returned by what()
    /// @param file, line  where, as __FILE__ and __LINE__ give it
    OrvanDspException(std::string const& message, char const* file, unsigned long line);

    char const* what() const noexcept override { return message.c_str(); }
    std::string const& GetFile() const noexcept { return file; }
    unsigned long GetLine() const noexcept { return line; }

private:
    std::string file;
    std::string message;
    unsigned long line;
};

}  // namespace orvandsp
