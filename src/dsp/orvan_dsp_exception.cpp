#include "dsp/orvan_dsp_exception.h"

#include <iostream>

namespace orvandsp {

OrvanDspException::OrvanDspException(std::string const& what, char const* where, unsigned long lineNumber)
    : file(where), message(what), line(lineNumber) {
    std::cerr << "OrvanDspException : " << file << " " << line << " : " << message << std::endl;
}

}  // namespace orvandsp
