#include "orvanverb-live/live_options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>

#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/options/option_values.h"

namespace live {

namespace {

using program::UsageError;

constexpr char const* about =
    "Puts what it hears into a room while it plays: sources come from JACK or from a file, and people, consoles and\n"
    "trackers move them by OSC and by a page in the browser.";

constexpr char const* footer =
    "OSC: /orvanverb/tr0 2.5, /orvanverb/source/1/azim -30 and so on (docs/live.md), azimuth positive to the right;\n"
    "ADM-OSC: /adm/obj/1/azim 30, azimuth positive to the left.\n"
    "Everything listens at this machine alone unless --bind says otherwise; then the page needs the token that is\n"
    "printed at the beginning.\n"
    "  orvanverb-live --audio file:voice.wav:out.wav --http 8080\n"
    "  orvanverb-live --inputs 8 --connect in=system:capture_ --connect out=system:playback_ --http 8080";

struct Words {
    program::CommonWords common;
    std::string audio = "jack", osc, adm, http, inputs;
    std::vector<std::string> connect;
};

int ParsePort(std::string const& option, std::string const& word) {
    return static_cast<int>(program::CountWithin(option, word, "port", 1, 65535));
}

std::optional<int> ParsePortOrOff(std::string const& option, std::string const& word) {
    if (word == "off") return std::nullopt;
    return ParsePort(option, word);
}

void TakeAudio(std::string const& word, LiveOptions& options) {
    if (word == "jack") return;
    constexpr std::string_view file = "file:";
    const std::size_t last = word.rfind(':');
    if (!word.starts_with(file) || last < file.size() + 1 || last + 1 == word.size())
        throw UsageError("--audio: '" + word + "' is neither jack nor file:IN:OUT");
    options.fromFile = true;
    options.room.inputs = {word.substr(file.size(), last - file.size())};
    options.room.output = word.substr(last + 1);
}

void TakeConnections(std::vector<std::string> const& words, LiveOptions& options) {
    for (std::string const& word : words) {
        if (word.starts_with("in=") && word.size() > 3)
            options.connectIn.push_back(word.substr(3));
        else if (word.starts_with("out=") && word.size() > 4)
            options.connectOut.push_back(word.substr(4));
        else
            throw UsageError("--connect: '" + word + "' is neither in=PREFIX nor out=PREFIX");
    }
}

void AddAudioOptions(CLI::App& app, LiveOptions& options, Words& words) {
    program::AddValue(app, "--audio", words.audio, "jack|file:IN:OUT",
                      "Where sound comes from and goes to: jack, or file:IN:OUT, which needs no\n"
                      "sound card: IN plays again and again into OUT until Ctrl-C [jack]");
    app.add_flag("--once", options.once, "A file: end behind the end of IN, when the room has died away");
    app.add_flag("--free-running", options.freeRunning, "A file: as fast as it goes, once");
    program::AddValue(app, "-n,--name", options.name, "NAME", "JACK: the client's name [orvanverb]");
    program::AddValue(app, "--inputs", words.inputs, "COUNT", "JACK: how many sources there are [1]");
    app.add_option("--connect", words.connect,
                   "JACK: connect with the ports whose names begin so, as in=system:capture_;\nmay be repeated")
        ->type_name("in=|out=PREFIX")
        ->allow_extra_args(false);
    program::AddValue(app, "--record", options.record, "FILE", "JACK: also write what is played to a file");
    program::AddValue(app, "--record-inputs", options.recordInputs, "FILE",
                      "JACK: also write what comes in, one channel a source; from it render plays\n"
                      "again what --record holds, sample for sample");
    program::AddForce(app, options.room);
}

void AddControlOptions(CLI::App& app, LiveOptions& options, Words& words) {
    program::AddValue(app, "--http", words.http, "PORT", "Serve the page at this port: http://localhost:PORT");
    program::AddValue(app, "--osc", words.osc, "PORT|off", "Port for OSC, /orvanverb/... [9000]");
    program::AddValue(app, "--adm", words.adm, "PORT|off", "Port for ADM-OSC, /adm/...; answers go to 4002 [4001]");
    app.add_option("--adm-dmax", options.osc.dmaxM, "ADM-OSC: what a distance of 1 is [10]")
        ->type_name("METRES")
        ->check(CLI::Range(0.01f, 10000.0f));
    program::AddValue(app, "--bind", options.osc.bind, "ADDRESS",
                      "Address of the network interface to listen at [127.0.0.1]");
    program::AddValue(app, "--token", options.token, "WORD", "What pages of other machines must know [made up]");
    program::AddValue(app, "--autosave", options.autosave, "FILE", "Write the state at the end, also after Ctrl-C");
}

void TakeMeaning(Words const& words, LiveOptions& options) {
    TakeAudio(words.audio, options);
    TakeConnections(words.connect, options);
    program::TakeCommonMeaning(words.common, options.room);
    if (!words.osc.empty()) options.osc.own = ParsePortOrOff("--osc", words.osc);
    if (!words.adm.empty()) options.osc.adm = ParsePortOrOff("--adm", words.adm);
    if (!words.http.empty()) options.http = ParsePort("--http", words.http);
    if (!words.inputs.empty())
        options.numInputs = program::CountWithin("--inputs", words.inputs, "count", 1, program::maxSources);
    if (options.fromFile) {
        for (auto const& [given, name] : {std::pair{!words.inputs.empty(), "--inputs"},
                                          {!words.connect.empty(), "--connect"},
                                          {options.record.has_value(), "--record"},
                                          {options.recordInputs.has_value(), "--record-inputs"}})
            if (given) throw UsageError(std::string(name) + ": is for JACK, not for files");
    } else if (options.once || options.freeRunning) {
        throw UsageError("--once and --free-running are for --audio file:IN:OUT");
    }
    options.room.AlsoWrites("--record", options.record);
    options.room.AlsoWrites("--record-inputs", options.recordInputs);
    program::RequireSafeOutputs(options.room);
}

}  // namespace

std::optional<LiveOptions> ParseLiveOptions(int argc, char const* const* argv) {
    LiveOptions options;
    Words words;
    CLI::App app(about, "orvanverb-live");
    app.set_version_flag("--version", "orvanverb-live " ORVANVERB_VERSION);
    app.get_formatter()->column_width(36);
    app.footer(footer);
    AddAudioOptions(app, options, words);
    program::AddRoom(app, options.room, words.common);
    program::AddVector(app, words.common);
    AddControlOptions(app, options, words);
    try {
        app.parse(argc, argv);
    } catch (CLI::Success const& success) {
        app.exit(success);
        return std::nullopt;
    } catch (CLI::ParseError const& error) {
        std::string message = error.what();
        std::replace(message.begin(), message.end(), '\n', ' ');
        throw UsageError(message + " (orvanverb-live --help tells more)");
    }
    TakeMeaning(words, options);
    return options;
}

}  // namespace live
