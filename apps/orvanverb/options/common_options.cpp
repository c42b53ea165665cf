#include "orvanverb/options/common_options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

#include "engine/room_format.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/part_file.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/options/option_values.h"

namespace program {

namespace {

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

constexpr float softest = -120.0f, loudest = 60.0f;  // of what options add [dB]

float ParseLevel(char const* option, std::string const& word, float least, float greatest) {
    const std::optional<float> decibels = ParseNumber(word);
    if (!decibels || *decibels < least || *decibels > greatest)
        throw UsageError(std::string(option) + ": '" + word + "' is no level from " + NumberText(least) + " to " +
                         NumberText(greatest) + " dB");
    return *decibels;
}

/// The level of a layer, which may be switched off.
float ParseLayerLevel(char const* option, std::string const& word) {
    if (word == "-inf" || word == "off") return -std::numeric_limits<float>::infinity();
    try {
        return ParseLevel(option, word, softest, loudest);
    } catch (UsageError const& error) {
        throw UsageError(error.what() + std::string(", or -inf, which switches it off"));
    }
}

double ParseGap(std::string const& word) {
    constexpr float longest = 3600.0f;
    const std::optional<float> seconds = ParseNumber(word);
    if (!seconds || *seconds < 0.0f || *seconds > longest)
        throw UsageError("--in-turn: '" + word + "' is no time from 0 to " + NumberText(longest) + " seconds");
    return static_cast<double>(*seconds);
}

}  // namespace

void AddFileOptions(CLI::App& command, Options& options, CommonWords& words, char const* tail) {
    command
        .add_option("-o,--output", options.output,
                    "File to write; its name's end chooses the format: .wav .flac .aiff .ogg .w64 .caf\n.au .raw. "
                    "- is standard output: AU, or raw samples with --format raw, as WAV\ncan't be streamed")
        ->type_name("FILE")
        ->take_last();
    AddForce(command, options);
    command.add_option("--rate", words.rate, "Sample rate of the output")->type_name("HZ")->take_last();
    command
        .add_option("--format", words.format,
                    "Samples: pcm16, pcm24 or float [float, pcm24 for .flac]; or the format of a name\nthat tells none")
        ->type_name("NAME")
        ->take_last();
    command.add_option("--gain", words.gain, "Make the output louder or softer [0]")->type_name("DB")->take_last();
    command
        .add_option("--normalize", words.normalize,
                    "Bring the peak of the output to this level, as -1; it is written when all is\nrendered")
        ->type_name("DBFS")
        ->take_last();
    command.add_option("--tail", words.tail, tail)->type_name("SECONDS|auto")->take_last();
    AddVector(command, words);
    AddSummary(command, options);
    command.add_flag("-n,--dry-run", options.dryRun,
                     "Check everything, say what would be read and written, write nothing");
}

void AddSummary(CLI::App& command, Options& options) {
    command.add_flag("-q,--quiet", options.quiet, "Tell of nothing but warnings and errors");
    command.add_flag("--json", options.json, "Print a summary for programs on standard output");
}

void AddVector(CLI::App& command, CommonWords& words) {
    command.add_option("--vector", words.vector, "Samples of one run of the engine, a power of two from 16 on [64]")
        ->type_name("COUNT")
        ->take_last();
}

void AddRoom(CLI::App& command, Options& options, CommonWords& words) {
    std::string methods = "Form of the outputs:";
    for (Lume::RoomFormat const& format : Lume::roomFormats)
        methods.append(methods.size() - methods.rfind('\n') > 72 ? "\n" : " ").append(format.name);
    command.add_option("--method", options.method, methods + "\n[binaural, vbap2d, or vbap with heights]")
        ->type_name("NAME")
        ->take_last();
    command.add_flag("--ambix", options.ambix, "Ambisonics as other tools read it: ACN, SN3D, x ahead");
    AddOrder(command, words, "Of ambisonic methods [3]");
    command
        .add_option("--speakers", options.speakers,
                    "Loudspeakers: a count from 2 to 64 (2 is headphones), a name as 5.1 7.1.4 22.2\n"
                    "dome24 (a wrong one shows all), or a file with one AZIMUTH [ELEVATION [DISTANCE]]\n"
                    "a line [2]")
        ->type_name("COUNT|NAME|FILE")
        ->take_last();
    AddEars(command, options);
    AddPlaces(command, options, words);
    command
        .add_option("--preset", words.preset,
                    "A room: a name that `orvanverb presets` lists, or a file with one NAME VALUE...\n"
                    "a line")
        ->type_name("NAME|FILE")
        ->take_last();
    command.add_option("--set", words.settings, "Set a control of the room, over the preset; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command.add_option("--direct", words.direct, "Make the direct sound louder or softer, -inf: leave it out [0]")
        ->type_name("DB")
        ->take_last();
    command.add_option("--room", words.room, "The same for all that the room answers [0]")
        ->type_name("DB")
        ->take_last();
    command.add_option("--state", options.state, "Begin with a saved state of the room")
        ->type_name("FILE")
        ->take_last();
}

void AddForce(CLI::App& command, Options& options) {
    command.add_flag("-f,--force", options.force, "Replace files that are there");
}

void AddInputs(CLI::App& command, Options& options, CommonWords& words) {
    command
        .add_option("inputs", options.inputs, "Recordings; every channel is a source. - is standard input: WAV or AU")
        ->type_name("FILE");
    command.add_option("--in-turn", words.inTurn, "Let the recordings sound one after the other, with this pause")
        ->type_name("SECONDS")
        ->take_last();
}

void AddOrientation(CLI::App& command, CommonWords& words) {
    command
        .add_option("--orientation", words.orientation,
                    "Where the listener looks: to the right, up, and tilted to the right [0 0 0]")
        ->type_name("YAW PITCH ROLL")
        ->type_size(3)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void AddOrder(CLI::App& command, CommonWords& words, char const* help) {
    command.add_option("--order", words.order, help)->type_name("1...7")->take_last();
}

void AddPlaces(CLI::App& command, Options& options, CommonWords& words) {
    AddOrientation(command, words);
    command.add_option("--source", words.sources, "Place source I; may be repeated")
        ->type_name("I AZIMUTH ELEVATION DISTANCE")
        ->type_size(4)
        ->allow_extra_args(false);
    command
        .add_option("--scene", options.scene,
                    "What happens meanwhile: a file with one [TIME] MESSAGE a line, as\n"
                    "\"2.5 source 1 azim 30\" or \"0..16 source 1 azim 0 -> 360\"")
        ->type_name("FILE")
        ->take_last();
}

void AddEars(CLI::App& command, Options& options) {
    command
        .add_option("--hrtf", options.hrtf,
                    "Headphones: your own ears, a set of filters (.hrtf or .coll) or measurements\n"
                    "(.sofa), which are fitted once for each sample rate [the built-in ears]")
        ->type_name("FILE")
        ->take_last();
    command.add_flag("--no-cache", options.noCache,
                     "Fit measurements anew, and don't keep the result in ~/.cache/orvanverb");
}

void TakeCommonMeaning(CommonWords const& words, Options& options) {
    options.sources = ParseSources(words.sources);
    options.settings = ParseSettings(words.settings);
    if (!words.preset.empty()) options.preset = words.preset;
    if (!words.orientation.empty()) {
        try {
            options.orientation = ParseOrientation(std::span(words.orientation).last(3));
        } catch (std::invalid_argument const& error) {
            throw UsageError(std::string("--orientation: ") + error.what());
        }
    }
    if (!words.order.empty()) {
        options.order = ParseCount(words.order);
        if (!options.order || *options.order < 1 || *options.order > 7)
            throw UsageError("--order: '" + words.order + "' is no order from 1 to 7");
    }
    if (!words.rate.empty()) options.rate = ParseRate(words.rate);
    if (!words.format.empty()) options.format = ParseFormat(words.format);
    if (!words.gain.empty()) options.gain = std::pow(10.0f, ParseLevel("--gain", words.gain, softest, loudest) / 20.0f);
    if (!words.normalize.empty()) {
        if (!words.gain.empty()) throw UsageError("--gain: changes nothing beside --normalize");
        options.normalizeDb = ParseLevel("--normalize", words.normalize, softest, 0.0f);
    }
    if (!words.direct.empty()) options.directDb = ParseLayerLevel("--direct", words.direct);
    if (!words.room.empty()) options.roomDb = ParseLayerLevel("--room", words.room);
    if (options.output == standardOutputName && (options.json || options.reportJson))
        throw UsageError(std::string(options.json ? "--json" : "--report-json") +
                         ": is printed on standard output, where the sound goes");
    if (!words.tail.empty()) {
        options.tail = Tail::Parse(words.tail);
        options.tailGiven = true;
    }
    if (!words.vector.empty()) {
        options.vectorSize = ParseVectorSize(words.vector);
        options.vectorGiven = true;
    }
    if (!words.inTurn.empty()) options.inTurnSeconds = ParseGap(words.inTurn);
}

}  // namespace program
