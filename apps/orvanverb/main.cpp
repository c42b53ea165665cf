#include <cstdio>
#include <exception>
#include <string>

#include "dsp/console.h"
#include "orvanverb/command_line.h"
#include "orvanverb/common/interrupt.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/reader_left.h"
#include "orvanverb/common/standard_streams.h"

int main(int argc, char** argv) {
    try {
        // What the library has to say about files comes with its exceptions, as lines of the program.
        orvandsp::SetConsoleWriter([](orvandsp::Console, std::string const&) {});
        program::PrepareStandardStreams();
        program::CatchSignals();
        const program::Call call = program::ParseCommandLine(argc, argv);
        const int status = call.run ? call.run() : 0;
        return program::FinishStandardOutput() ? status : 1;
    } catch (program::ReaderLeft const& error) {
        return error.ExitStatus();
    } catch (program::ProgramError const& error) {
        std::fprintf(stderr, "orvanverb: %s\n", error.what());
        return error.ExitStatus();
    } catch (std::exception const& error) {
        std::fprintf(stderr, "orvanverb: %s\n", error.what());
        return 1;
    }
}
