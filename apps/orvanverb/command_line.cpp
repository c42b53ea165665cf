#include "orvanverb/command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "orvanverb/hrtf/hrtf_command_line.h"
#include "orvanverb/option_values.h"
#include "orvanverb/program_error.h"
#include "orvanverb/text.h"

namespace program {

namespace {

/// The words of the options as typed, before they mean anything.
struct Words {
    std::vector<std::string> sources;  // four to a source
    std::string rate;
    std::string format;
    std::string preset;
    std::vector<std::string> settings;
    std::string tail;
    std::string inTurn;
    std::string vector;
};

constexpr char const* footer =
    "Angles are the listener's: azimuth 0 is ahead, +90 right, -90 left; elevation 90 is above.\n"
    "Distances are in metres. Sources are counted from 1, through all channels of all inputs.\n"
    "At the end, or before an option, stand attributes of the object: @tr0 3 @early -6 0 0 0 177 5657. What comes\n"
    "later wins: state, preset, --set, --source, attributes, lines of the scene without a time.";

void AddCommonOptions(CLI::App& command, Options& options, Words& words) {
    command.add_option("-o,--output", options.output, "File to write")->required()->type_name("FILE")->take_last();
    command
        .add_option("--speakers", options.speakers,
                    "Loudspeakers: a count from 2 to 64 (2 is headphones), or a file with one\n"
                    "AZIMUTH [ELEVATION [DISTANCE]] a line [6]")
        ->type_name("COUNT|FILE")
        ->take_last();
    command.add_option("--source", words.sources, "Place source I; may be repeated")
        ->type_name("I AZIMUTH ELEVATION DISTANCE")
        ->type_size(4)
        ->allow_extra_args(false);
    command.add_option("--rate", words.rate, "Sample rate of the output")->type_name("HZ")->take_last();
    command.add_option("--format", words.format, "pcm16, pcm24, float or flac [float, or flac for a name in .flac]")
        ->type_name("NAME")
        ->take_last();
    command.add_option("--preset", words.preset, "A room: a file with one NAME VALUE... a line")
        ->type_name("FILE")
        ->take_last();
    command.add_option("--set", words.settings, "Set a control of the room, over the preset; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command
        .add_option("--scene", options.scene,
                    "What happens meanwhile: a file with one [SECONDS] MESSAGE a line, as\n"
                    "\"2.5 source 1 azim 30\"")
        ->type_name("FILE")
        ->take_last();
    command.add_option("--state", options.state, "Begin with a saved state of the room")
        ->type_name("FILE")
        ->take_last();
    command.add_option("--save-state", options.saveState, "Save the state with which the rendering begins")
        ->type_name("FILE")
        ->take_last();
    command
        .add_option("--tail", words.tail,
                    "Time behind the end of the input, or auto: until the output has stayed 60 dB\n"
                    "below its peak for a second, at most 120 seconds [auto]")
        ->type_name("SECONDS|auto")
        ->take_last();
    command.add_option("--vector", words.vector, "Samples of one run of the engine, a power of two from 16 on [64]")
        ->type_name("COUNT")
        ->take_last();
    command.footer(footer);
}

std::vector<Options::SourcePlace> ParseSources(std::vector<std::string> const& words) {
    std::vector<Options::SourcePlace> places;
    for (std::size_t i = 0; i + 4 <= words.size(); i += 4) {
        Options::SourcePlace place;
        const std::optional<unsigned int> number = ParseCount(words[i]);
        if (!number || *number < 1 || *number > maxSources)
            throw UsageError("--source: '" + words[i] + "' is no source number from 1 to " +
                             std::to_string(maxSources));
        place.number = *number;
        try {
            place.position = ParseListenerPosition(std::span(words).subspan(i + 1, 3));
        } catch (std::invalid_argument const& error) {
            throw UsageError("--source " + words[i] + ": " + error.what());
        }
        places.push_back(place);
    }
    return places;
}

std::vector<Options::Setting> ParseSettings(std::vector<std::string> const& words) {
    std::vector<Options::Setting> settings;
    for (std::string const& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos || equals == 0) throw UsageError("--set: '" + word + "' is no NAME=VALUE");
        settings.push_back({word.substr(0, equals), SplitWords(word.substr(equals + 1), ",")});
    }
    return settings;
}

double ParseGap(std::string const& word) {
    constexpr float longest = 3600.0f;
    const std::optional<float> seconds = ParseNumber(word);
    if (!seconds || *seconds < 0.0f || *seconds > longest)
        throw UsageError("--in-turn: '" + word + "' is no time from 0 to " + NumberText(longest) + " seconds");
    return static_cast<double>(*seconds);
}

void TakeMeaning(Words const& words, Options& options) {
    if (options.output.empty()) throw UsageError("--output: needs a name");
    options.sources = ParseSources(words.sources);
    options.settings = ParseSettings(words.settings);
    if (!words.preset.empty()) options.preset = words.preset;
    if (!words.rate.empty()) options.rate = ParseRate(words.rate);
    if (!words.tail.empty()) options.tail = Tail::Parse(words.tail);
    if (!words.vector.empty()) options.vectorSize = ParseVectorSize(words.vector);
    if (!words.inTurn.empty()) options.inTurnSeconds = ParseGap(words.inTurn);
    if (!words.format.empty()) options.format = ParseFormat(words.format);
}

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

std::optional<Options> ParseCommandLine(int argc, char const* const* argv) {
    CLI::App app("Puts recordings into a room and writes what loudspeakers or headphones play.", "orvanverb");
    app.set_version_flag("--version", "orvanverb " ORVANVERB_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->column_width(36);

    Options options;
    Words words;
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    options.attributes = TakeAttributes(arguments);
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back

    CLI::App* render = app.add_subcommand("render", "Render recordings (WAV, AIFF, FLAC, Ogg) in a room");
    render->add_option("inputs", options.inputs, "Recordings; every channel is a source")
        ->required()
        ->type_name("FILE");
    AddCommonOptions(*render, options, words);
    render->add_option("--in-turn", words.inTurn, "Let the recordings sound one after the other, with this pause")
        ->type_name("SECONDS")
        ->take_last();
    CLI::App* ir = app.add_subcommand("ir", "Write the impulse response from one source to all loudspeakers");
    AddCommonOptions(*ir, options, words);
    CLI::App* shell = app.add_subcommand("shell", "Make an object orvanverb~ and send it messages from standard input");
    shell->footer(
        "The object is made with the attributes that follow the command: shell @numsources 2 @tr0 3\n"
        "Each line is a message to the object. Lines that begin with a colon are for the shell: :get NAME, :state,\n"
        ":restore VALUES, :preset, :recall, :assist in|out INDEX, :dsp RATE BLOCK, :notifications, :quit.");
    CLI::App* hrtf = AddHrtfCommand(app, options.hrtf);
    CLI::App* listing = app.add_subcommand("attributes", "List the attributes of orvanverb~");
    listing->add_flag("--json", options.json, "As JSON, for programs");
    CLI::App* reference =
        app.add_subcommand("reference", "Write the reference page of orvanverb~, and its style sheet, where you are");

    try {
        app.parse(arguments);
    } catch (CLI::Success const& success) {  // --help or --version
        app.exit(success);
        return std::nullopt;
    } catch (CLI::RequiredError const& error) {
        if (app.get_subcommands().empty() && argc > 1)
            throw UsageError("'" + std::string(argv[1]) +
                             "' is no command; there are render, ir, hrtf, shell, attributes and reference");
        throw UsageError(OneLine(error));
    } catch (CLI::ParseError const& error) {
        throw UsageError(OneLine(error));
    }
    if (shell->parsed()) options.command = Options::Command::Shell;
    if (hrtf->parsed()) options.command = Options::Command::Hrtf;
    if (listing->parsed()) options.command = Options::Command::Attributes;
    if (reference->parsed()) options.command = Options::Command::Reference;
    if (ir->parsed()) options.command = Options::Command::ImpulseResponse;
    if (render->parsed() || ir->parsed()) TakeMeaning(words, options);
    return options;
}

}  // namespace program
