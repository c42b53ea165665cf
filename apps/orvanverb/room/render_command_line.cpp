#include "orvanverb/room/render_command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>

#include "engine/room_format.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/room/render.h"

namespace program {

namespace {

struct Words {
    CommonWords common;
    std::string preset;
    std::vector<std::string> settings;
};

constexpr char const* footer =
    "Angles are the listener's: azimuth 0 is ahead, +90 right, -90 left; elevation 90 is above.\n"
    "Distances are in metres. Sources are counted from 1, through all channels of all inputs.\n"
    "At the end, or before an option, stand attributes of the object: @tr0 3 @early -6 0 0 0 177 5657. What comes\n"
    "later wins: state, preset, --set, --source, attributes, lines of the scene without a time.";

std::vector<Options::Setting> ParseSettings(std::vector<std::string> const& words) {
    std::vector<Options::Setting> settings;
    for (std::string const& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos || equals == 0) throw UsageError("--set: '" + word + "' is no NAME=VALUE");
        settings.push_back({word.substr(0, equals), SplitWords(word.substr(equals + 1), ",")});
    }
    return settings;
}

void AddRoomOptions(CLI::App& command, Options& options, Words& words) {
    AddFileOptions(command, options, words.common,
                   "Time behind the end of the input, or auto: until the output has stayed 60 dB\n"
                   "below its peak for a second, at most 120 seconds [auto]");
    command.get_option("--output")->required();
    std::string methods = "Form of the outputs:";
    for (Lume::RoomFormat const& format : Lume::roomFormats)
        methods.append(methods.size() - methods.rfind('\n') > 72 ? "\n" : " ").append(format.name);
    command.add_option("--method", options.method, methods + "\n[binaural, vbap2d, or vbap with heights]")
        ->type_name("NAME")
        ->take_last();
    command.add_flag("--ambix", options.ambix, "Ambisonics as other tools read it: ACN, SN3D, x ahead");
    AddOrder(command, words.common, "Of ambisonic methods [3]");
    command
        .add_option("--speakers", options.speakers,
                    "Loudspeakers: a count from 2 to 64 (2 is headphones), a name as 5.1 7.1.4 22.2\n"
                    "dome24 (a wrong one shows all), or a file with one AZIMUTH [ELEVATION [DISTANCE]]\n"
                    "a line [2]")
        ->type_name("COUNT|NAME|FILE")
        ->take_last();
    AddEars(command, options);
    AddPlaces(command, options, words.common);
    command
        .add_option("--preset", words.preset,
                    "A room: a name that `orvanverb presets` lists, or a file with one NAME VALUE...\n"
                    "a line")
        ->type_name("NAME|FILE")
        ->take_last();
    command.add_option("--set", words.settings, "Set a control of the room, over the preset; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command.add_option("--state", options.state, "Begin with a saved state of the room")
        ->type_name("FILE")
        ->take_last();
    command.add_option("--save-state", options.saveState, "Save the state with which the rendering begins")
        ->type_name("FILE")
        ->take_last();
    command.add_flag("--report", options.report,
                     "Say what the room was asked for and what is measured of it, per octave");
    command.add_flag("--report-json", options.reportJson, "The same on standard output, as JSON with all curves");
    command.footer(footer);
}

void TakeMeaning(Words const& words, Options& options) {
    if (options.output.empty()) throw UsageError("--output: needs a name");
    TakeCommonMeaning(words.common, options);
    options.settings = ParseSettings(words.settings);
    if (!words.preset.empty()) options.preset = words.preset;
}

void WillRun(Call& call, std::shared_ptr<Options> const& options, Words const& words, void (*run)(Options const&)) {
    TakeMeaning(words, *options);
    options->attributes = call.attributes;
    RequireSafeOutputs(*options);
    call.run = [options, run] {
        run(*options);
        return 0;
    };
}

}  // namespace

void AddRenderCommand(CLI::App& app, Call& call) {
    const auto options = std::make_shared<Options>();
    const auto words = std::make_shared<Words>();
    CLI::App* render = app.add_subcommand("render", "Render recordings (WAV, AIFF, FLAC, Ogg) in a room");
    AddInputs(*render, *options, words->common);
    render->get_option("inputs")->required();
    AddRoomOptions(*render, *options, *words);
    render->callback([&call, options, words] { WillRun(call, options, *words, RunRender); });
}

void AddImpulseResponseCommand(CLI::App& app, Call& call) {
    const auto options = std::make_shared<Options>();
    const auto words = std::make_shared<Words>();
    CLI::App* ir = app.add_subcommand("ir", "Write the impulse response from one source to all loudspeakers");
    AddRoomOptions(*ir, *options, *words);
    ir->callback([&call, options, words] { WillRun(call, options, *words, RunImpulseResponse); });
}

}  // namespace program
