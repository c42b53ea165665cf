#include "orvanverb/command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/decode/decode_command_line.h"
#include "orvanverb/hrtf/hrtf_command_line.h"
#include "orvanverb/measure/measure_command_line.h"
#include "orvanverb/pan/pan_command_line.h"
#include "orvanverb/presets/presets_command.h"
#include "orvanverb/room/render_command_line.h"

namespace program {

namespace {

/// True for a word that begins another option, and is no negative number.
bool IsOption(std::string const& word) {
    return word.size() > 1 && word[0] == '-' && !ParseNumber(word);
}

/// Takes the attributes of the object box out of the words: from a word with @ up to the next option. They must not
/// come before the parser's eyes, which would take a negative value for an option.
std::vector<std::string> TakeAttributes(std::vector<std::string>& words) {
    std::vector<std::string> attributes, others;
    bool within = false;
    for (std::string const& word : words) {
        if (word.starts_with('@')) within = true;
        if (IsOption(word)) within = false;
        (within ? attributes : others).push_back(word);
    }
    words = others;
    return attributes;
}

std::string OneLine(CLI::ParseError const& error) {
    std::string message = error.what();
    std::replace(message.begin(), message.end(), '\n', ' ');
    return message + " (orvanverb --help tells more)";
}

void AddObjectCommands(CLI::App& app, Options& options) {
    CLI::App* shell = app.add_subcommand("shell", "Make an object orvanverb~ and send it messages from standard input");
    shell->footer(
        "The object is made with the attributes that follow the command: shell @numsources 2 @tr0 3\n"
        "Each line is a message to the object. Lines that begin with a colon are for the shell: :get NAME, :state,\n"
        ":restore VALUES, :preset, :recall, :assist in|out INDEX, :dsp RATE BLOCK, :notifications, :quit.");
    shell->callback([&options] { options.command = Options::Command::Shell; });
    CLI::App* listing = app.add_subcommand("attributes", "List the attributes of orvanverb~");
    listing->add_flag("--json", options.json, "As JSON, for programs");
    listing->callback([&options] { options.command = Options::Command::Attributes; });
    CLI::App* controls = app.add_subcommand("controls", "List the controls of the room, as --set and files name them");
    controls->add_flag("--json", options.json, "As JSON, for programs");
    controls->callback([&options] { options.command = Options::Command::Controls; });
    CLI::App* reference =
        app.add_subcommand("reference", "Write the reference page of orvanverb~, and its style sheet, where you are");
    reference->callback([&options] { options.command = Options::Command::Reference; });
}

}  // namespace

std::optional<Options> ParseCommandLine(int argc, char const* const* argv) {
    CLI::App app("Puts recordings into a room and writes what loudspeakers or headphones play.", "orvanverb");
    app.set_version_flag("--version", "orvanverb " ORVANVERB_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(36);

    Options options;
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    options.attributes = TakeAttributes(arguments);
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back

    AddRenderCommand(app, options);
    AddImpulseResponseCommand(app, options);
    AddPanCommand(app, options);
    AddDecodeCommand(app, options);
    AddHrtfCommand(app, options);
    AddMeasureCommand(app, options);
    AddPresetsCommand(app, options);
    AddObjectCommands(app, options);
    try {
        app.parse(arguments);
    } catch (CLI::Success const& success) {  // --help or --version
        app.exit(success);
        return std::nullopt;
    } catch (CLI::RequiredError const& error) {
        if (app.get_subcommands().empty() && argc > 1) {
            std::string names;
            for (CLI::App const* command : app.get_subcommands({})) names.append(" ").append(command->get_name());
            throw UsageError("'" + std::string(argv[1]) + "' is no command; there are" + names);
        }
        throw UsageError(OneLine(error));
    } catch (CLI::ParseError const& error) {
        throw UsageError(OneLine(error));
    }
    return options;
}

}  // namespace program
