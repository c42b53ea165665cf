#include "orvanverb/common/run_program.h"

#include <cstdio>
#include <exception>
#include <string>

#include "dsp/console.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/reader_left.h"
#include "orvanverb/common/standard_streams.h"

namespace program {

int RunProgram(char const* name, std::function<int()> const& run) {
    try {
        // What the library has to say about files comes with its exceptions, as lines of the program.
        orvandsp::SetConsoleWriter([](orvandsp::Console, std::string const&) {});
        PrepareStandardStreams();
        const int status = run();
        return FinishStandardOutput() ? status : 1;
    } catch (ReaderLeft const& error) {
        return error.ExitStatus();
    } catch (ProgramError const& error) {
        std::fprintf(stderr, "%s: %s\n", name, error.what());
        return error.ExitStatus();
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s: %s\n", name, error.what());
        return 1;
    }
}

}  // namespace program
