#include <cstdio>
#include <exception>
#include <optional>

#include "orvanverb/command_line.h"
#include "orvanverb/interrupt.h"
#include "orvanverb/program_error.h"
#include "orvanverb/render.h"

int main(int argc, char** argv) {
    try {
        program::CatchInterrupts();
        if (const std::optional<program::Options> options = program::ParseCommandLine(argc, argv))
            program::Run(*options);
        return 0;
    } catch (program::ProgramError const& error) {
        std::fprintf(stderr, "orvanverb: %s\n", error.what());
        return error.ExitStatus();
    } catch (std::exception const& error) {
        std::fprintf(stderr, "orvanverb: %s\n", error.what());
        return 1;
    }
}
