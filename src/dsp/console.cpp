#include "dsp/console.h"

#include <iostream>

namespace orvandsp {

namespace {

ConsoleWriter theWriter = nullptr;

}  // namespace

void SetConsoleWriter(ConsoleWriter writer) noexcept {
    theWriter = writer;
}

void WriteToConsole(Console console, std::string const& line) {
    if (theWriter != nullptr)
        theWriter(console, line);
    else
        (console == Console::output ? std::cout : std::cerr) << line << std::endl;
}

}  // namespace orvandsp
