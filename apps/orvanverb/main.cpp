#include <cstdio>
#include <exception>
#include <optional>
#include <string>

#include "dsp/console.h"
#include "orvanverb/command_line.h"
#include "orvanverb/common/interrupt.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/standard_streams.h"
#include "orvanverb/common/text.h"
#include "orvanverb/decode/decode_command.h"
#include "orvanverb/hrtf/hrtf_commands.h"
#include "orvanverb/measure/measure_command.h"
#include "orvanverb/object/attribute_listing.h"
#include "orvanverb/object/reference.h"
#include "orvanverb/object/shell.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/pan/pan_command.h"
#include "orvanverb/room/render.h"

namespace {

int ObeyHrtf(program::HrtfOptions const& options) {
    using Action = program::HrtfOptions::Action;
    switch (options.action) {
        case Action::Info:
            return program::ShowHrtf(options);
        case Action::Convert:
            program::ConvertHrtf(options);
            break;
        case Action::Transaural:
            program::MakeTransaural(options);
            break;
    }
    return 0;
}

/// @return the exit status
int Obey(program::Options const& options) {
    program::RequireSeparateFiles(options);
    using Command = program::Options::Command;
    switch (options.command) {
        case Command::Render:
        case Command::ImpulseResponse:
            program::Run(options);
            break;
        case Command::Pan:
            program::RunPan(options);
            break;
        case Command::Decode:
            program::RunDecode(options);
            break;
        case Command::Hrtf:
            return ObeyHrtf(options.hrtf);
        case Command::Measure:
            program::RunMeasure(options);
            break;
        case Command::Shell:
            return program::RunShell(program::JoinWords(options.attributes));
        case Command::Attributes:
            std::fputs((options.json ? program::AttributeJson() : program::AttributeTable()).c_str(), stdout);
            break;
        case Command::Reference:
            program::WriteReference();
            break;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        // What the library has to say about files comes with its exceptions, as lines of the program.
        orvandsp::SetConsoleWriter([](orvandsp::Console, std::string const&) {});
        program::PrepareStandardStreams();
        program::CatchSignals();
        const std::optional<program::Options> options = program::ParseCommandLine(argc, argv);
        const int status = options ? Obey(*options) : 0;
        return program::FinishStandardOutput() ? status : 1;
    } catch (program::ProgramError const& error) {
        std::fprintf(stderr, "orvanverb: %s\n", error.what());
        return error.ExitStatus();
    } catch (std::exception const& error) {
        std::fprintf(stderr, "orvanverb: %s\n", error.what());
        return 1;
    }
}
