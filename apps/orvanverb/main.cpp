#include "orvanverb/command_line.h"
#include "orvanverb/common/interrupt.h"
#include "orvanverb/common/run_program.h"

int main(int argc, char** argv) {
    return program::RunProgram("orvanverb", [&] {
        program::CatchSignals();
        const program::Call call = program::ParseCommandLine(argc, argv);
        return call.run ? call.run() : 0;
    });
}
