#include "orvanverb/room/render_command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>

#include "orvanverb/common/program_error.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/room/render.h"

namespace program {

namespace {

constexpr char const* footer =
    "Angles are the listener's: azimuth 0 is ahead, +90 right, -90 left; elevation 90 is above.\n"
    "Distances are in metres. Sources are counted from 1, through all channels of all inputs.\n"
    "At the end, or before an option, stand attributes of the object: @tr0 3 @early -6 0 0 0 177 5657. What comes\n"
    "later wins: state, preset, --set, --source, attributes, lines of the scene without a time.";

void AddRoomOptions(CLI::App& command, Options& options, CommonWords& words) {
    AddFileOptions(command, options, words,
                   "Time behind the end of the input, or auto: until the output has stayed 60 dB\n"
                   "below its peak for a second, at most 120 seconds [auto]");
    command.get_option("--output")->required();
    AddRoom(command, options, words);
    AddValue(command, "--save-state", options.saveState, "FILE", "Save the state with which the rendering begins");
    command.add_flag("--report", options.report,
                     "Say what the room was asked for and what is measured of it, per octave");
    command.add_flag("--report-json", options.reportJson, "The same on standard output, as JSON with all curves");
    command.footer(footer);
}

void TakeMeaning(CommonWords const& words, Options& options) {
    if (options.output.empty()) throw UsageError("--output: needs a name");
    TakeCommonMeaning(words, options);
}

void WillRun(Call& call, std::shared_ptr<Options> const& options, CommonWords const& words) {
    TakeMeaning(words, *options);
    options->attributes = call.attributes;
    RequireSafeOutputs(*options);
    call.Will([options] { RunRender(*options); });
}

}  // namespace

void AddRenderCommand(CLI::App& app, Call& call) {
    const auto options = std::make_shared<Options>();
    const auto words = std::make_shared<CommonWords>();
    CLI::App* render = app.add_subcommand("render", "Render recordings (WAV, AIFF, FLAC, Ogg) in a room");
    AddInputs(*render, *options, *words);
    render->get_option("inputs")->required();
    AddRoomOptions(*render, *options, *words);
    render->footer(render->get_footer() +
                   "\n  orvanverb render voice.wav -o wet.wav --preset church --source 1 -45 0 2 --room -8"
                   "\n  orvanverb render voice.wav -o ring.flac --preset hall --speakers 8 --scene walk.scene"
                   "\n  orvanverb render voice.wav -o mine.wav --set tr0=1.2 --set early_start=8 --report");
    render->callback([&call, options, words] { WillRun(call, options, *words); });
}

void AddImpulseResponseCommand(CLI::App& app, Call& call) {
    const auto options = std::make_shared<Options>();
    const auto words = std::make_shared<CommonWords>();
    CLI::App* ir = app.add_subcommand("ir", "Write the impulse response from one source to all loudspeakers");
    AddRoomOptions(*ir, *options, *words);
    ir->footer(ir->get_footer() +
               "\n  orvanverb ir -o hall.wav --preset hall --source 1 0 0 3"
               "\n  orvanverb ir -o dome.wav --preset church --speakers dome24 --tail 4 --rate 96000");
    ir->callback([&call, options, words] { WillRun(call, options, *words); });
}

}  // namespace program
