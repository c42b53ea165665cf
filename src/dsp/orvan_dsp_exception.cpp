#include "dsp/orvan_dsp_exception.h"

#include "dsp/console.h"

namespace orvandsp {

OrvanDspException::OrvanDspException(std::string const& what, char const* where, unsigned long lineNumber)
    : file(where), message(what), line(lineNumber) {
    WriteToConsole(Console::error, "OrvanDspException : " + file + " " + std::to_string(line) + " : " + message);
}

}  // namespace orvandsp
