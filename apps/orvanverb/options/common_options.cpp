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
        place.number = CountWithin("--source", words[i], "source number", 1, maxSources);
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

/// The level of a layer, which may be switched off.
float ParseLayerLevel(char const* option, std::string const& word) {
    if (word == "-inf" || word == "off") return -std::numeric_limits<float>::infinity();
    try {
        return NumberWithin(option, word, "level", softest, loudest, " dB");
    } catch (UsageError const& error) {
        throw UsageError(error.what() + std::string(", or -inf, which switches it off"));
    }
}

template <class Value>
void AddLastOf(CLI::App& command, char const* names, Value& value, char const* kind, std::string const& help) {
    command.add_option(names, value, help)->type_name(kind)->take_last();
}

}  // namespace

void AddValue(CLI::App& command, char const* names, std::string& value, char const* kind, std::string const& help) {
    AddLastOf(command, names, value, kind, help);
}

void AddValue(CLI::App& command, char const* names, std::optional<std::string>& value, char const* kind,
              std::string const& help) {
    AddLastOf(command, names, value, kind, help);
}

void AddFileOptions(CLI::App& command, Options& options, CommonWords& words, char const* tail) {
    AddValue(command, "-o,--output", options.output, "FILE",
             "File to write; its name's end chooses the format: .wav .flac .aiff .ogg .w64 .caf\n.au .raw. "
             "- is standard output: AU, or raw samples with --format raw, as WAV\ncan't be streamed");
    AddForce(command, options);
    AddValue(command, "--rate", words.rate, "HZ", "Sample rate of the output");
    AddValue(command, "--format", words.format, "NAME",
             "Samples: pcm16, pcm24 or float [float, pcm24 for .flac]; or the format of a name\nthat tells none");
    AddValue(command, "--gain", words.gain, "DB", "Make the output louder or softer [0]");
    AddValue(command, "--normalize", words.normalize, "DBFS",
             "Bring the peak of the output to this level, as -1; it is written when all is\nrendered");
    AddValue(command, "--tail", words.tail, "SECONDS|auto", tail);
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
    AddValue(command, "--vector", words.vector, "COUNT",
             "Samples of one run of the engine, a power of two from 16 on [64]");
}

void AddRoom(CLI::App& command, Options& options, CommonWords& words) {
    std::string methods = "Form of the outputs:";
    for (Lume::RoomFormat const& format : Lume::roomFormats)
        methods.append(methods.size() - methods.rfind('\n') > 72 ? "\n" : " ").append(format.name);
    AddValue(command, "--method", options.method, "NAME", methods + "\n[binaural, vbap2d, or vbap with heights]");
    command.add_flag("--ambix", options.ambix, "Ambisonics as other tools read it: ACN, SN3D, x ahead");
    AddOrder(command, words, "Of ambisonic methods [3]");
    AddValue(command, "--speakers", options.speakers, "COUNT|NAME|FILE",
             "Loudspeakers: a count from 2 to 64 (2 is headphones), a name as 5.1 7.1.4 22.2\n"
             "dome24 (a wrong one shows all), or a file with one AZIMUTH [ELEVATION [DISTANCE]]\n"
             "a line [2]");
    AddEars(command, options);
    AddPlaces(command, options, words);
    AddValue(command, "--preset", words.preset, "NAME|FILE",
             "A room: a name that `orvanverb presets` lists, or a file with one NAME VALUE...\n"
             "a line");
    command.add_option("--set", words.settings, "Set a control of the room, over the preset; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    AddValue(command, "--direct", words.direct, "DB", "Make the direct sound louder or softer, -inf: leave it out [0]");
    AddValue(command, "--room", words.room, "DB", "The same for all that the room answers [0]");
    AddValue(command, "--state", options.state, "FILE", "Begin with a saved state of the room");
}

void AddForce(CLI::App& command, Options& options) {
    command.add_flag("-f,--force", options.force, "Replace files that are there");
}

void AddInputs(CLI::App& command, Options& options, CommonWords& words) {
    command
        .add_option("inputs", options.inputs, "Recordings; every channel is a source. - is standard input: WAV or AU")
        ->type_name("FILE");
    AddValue(command, "--in-turn", words.inTurn, "SECONDS",
             "Let the recordings sound one after the other, with this pause");
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
    AddValue(command, "--order", words.order, "1...7", help);
}

void AddPlaces(CLI::App& command, Options& options, CommonWords& words) {
    AddOrientation(command, words);
    command.add_option("--source", words.sources, "Place source I; may be repeated")
        ->type_name("I AZIMUTH ELEVATION DISTANCE")
        ->type_size(4)
        ->allow_extra_args(false);
    AddValue(command, "--scene", options.scene, "FILE",
             "What happens meanwhile: a file with one [TIME] MESSAGE a line, as\n"
             "\"2.5 source 1 azim 30\" or \"0..16 source 1 azim 0 -> 360\"");
}

void AddEars(CLI::App& command, Options& options) {
    AddValue(command, "--hrtf", options.hrtf, "FILE",
             "Headphones: your own ears, a set of filters (.hrtf or .coll) or measurements\n"
             "(.sofa), which are fitted once for each sample rate [the built-in ears]");
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
    if (!words.order.empty()) options.order = CountWithin("--order", words.order, "order", 1, 7);
    if (!words.rate.empty()) options.rate = ParseRate(words.rate);
    if (!words.format.empty()) options.format = ParseFormat(words.format);
    if (!words.gain.empty())
        options.gain = std::pow(10.0f, NumberWithin("--gain", words.gain, "level", softest, loudest, " dB") / 20.0f);
    if (!words.normalize.empty()) {
        if (!words.gain.empty()) throw UsageError("--gain: changes nothing beside --normalize");
        options.normalizeDb = NumberWithin("--normalize", words.normalize, "level", softest, 0.0f, " dB");
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
    if (!words.inTurn.empty()) {
        constexpr float longest = 3600.0f;
        options.inTurnSeconds = NumberWithin("--in-turn", words.inTurn, "time", 0.0f, longest, " seconds");
    }
}

}  // namespace program
