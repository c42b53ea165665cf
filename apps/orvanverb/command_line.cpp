#include "orvanverb/command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/decode/decode_command_line.h"
#include "orvanverb/hrtf/hrtf_command_line.h"
#include "orvanverb/manual/manual_command.h"
#include "orvanverb/measure/measure_command_line.h"
#include "orvanverb/object/object_command_line.h"
#include "orvanverb/pan/pan_command_line.h"
#include "orvanverb/presets/presets_command.h"
#include "orvanverb/proposal/room_command.h"
#include "orvanverb/room/render_command_line.h"
#include "orvanverb/scene/scene_command.h"

namespace program {

namespace {

/// Every command, in the order in which --help shows them.
constexpr void (*commands[])(CLI::App& app, Call& call) = {
    AddRenderCommand, AddImpulseResponseCommand, AddPanCommand,     AddDecodeCommand,
    AddHrtfCommand,   AddMeasureCommand,         AddPresetsCommand, AddRoomCommand,
    AddSceneCommand,  AddObjectCommands,         AddManualCommand,
};

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

}  // namespace

Call ParseCommandLine(int argc, char const* const* argv) {
    CLI::App app("Puts recordings into a room and writes what loudspeakers or headphones play.", "orvanverb");
    app.set_version_flag("--version", "orvanverb " ORVANVERB_VERSION);
    app.require_subcommand(1);
    app.footer(
        "orvanverb COMMAND --help tells the options of one, with examples.\n"
        "  orvanverb render voice.wav -o wet.wav --preset church\n"
        "  orvanverb ir -o ir.wav --preset church --tail 4 && orvanverb measure ir.wav");
    app.get_formatter()->column_width(36);

    Call call;
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    call.attributes = TakeAttributes(arguments);
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back

    for (auto* const add : commands) add(app, call);
    try {
        app.parse(arguments);
    } catch (CLI::Success const& success) {  // --help or --version
        app.exit(success);
        return {};
    } catch (CLI::RequiredError const& error) {
        if (app.get_subcommands().empty() && argc > 1) {
            std::vector<std::string> names;
            for (CLI::App const* command : app.get_subcommands({})) names.push_back(command->get_name());
            throw UsageError("'" + std::string(argv[1]) + "' is no command" + DidYouMean(argv[1], names) +
                             "; there are " + JoinWords(names));
        }
        throw UsageError(OneLine(error));
    } catch (CLI::ParseError const& error) {
        throw UsageError(OneLine(error));
    }
    return call;
}

}  // namespace program
