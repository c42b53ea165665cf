#include "orvanverb/presets/presets_command.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <memory>

#include "orvanverb/common/json.h"
#include "orvanverb/common/text.h"
#include "orvanverb/measure/asked_decay.h"
#include "orvanverb/presets/preset.h"

namespace program {

namespace {

constexpr double sampleRate = 48000.0;  // [Hz]

std::string Json(Preset const& preset, Lume::OrvanVerb const& engine) {
    JsonObject json, decay;
    const std::vector<orvanmeasure::Band> bands = orvanmeasure::Bands(orvanmeasure::BandWidth::octave, sampleRate);
    const std::vector<orvanmeasure::Figure> asked = AskedDecay(engine, sampleRate, bands);
    for (std::size_t i = 0; i < bands.size(); ++i)
        decay.Add(bands[i].name, asked[i].IsThere() ? FixedText(asked[i].value, 3) : "null");
    json.Add("name", JsonString(preset.name));
    json.Add("file", JsonString(preset.path.string()));
    json.Add("title", JsonString(preset.title));
    json.Add("pre_delay_ms", NumberText(engine.GetEarlyStart()));
    json.Add("asked_t30", decay.Text());
    return json.Text();
}

void ListPresets(bool json) {
    std::string text = json ? "[" : "name              T30 s  C80 dB  pre-delay ms\n";
    for (std::filesystem::path const& path : AllPresets()) {
        const Preset preset = ReadPreset(path);
        const std::unique_ptr<Lume::Room> room = MakeRoom(preset);
        if (json) {
            text.append(text.size() > 1 ? ",\n " : "").append(Json(preset, room->Engine()));
            continue;
        }
        char line[64];
        std::snprintf(line, sizeof line, "%-16s %6s  %6s  %12.3g  ", preset.name.substr(0, 16).c_str(),
                      preset.Measured("T30").c_str(), preset.Measured("C80").c_str(),
                      static_cast<double>(room->Engine().GetEarlyStart()));
        text.append(line).append(preset.title).append("\n");
    }
    std::fputs((json ? text + "]\n" : text).c_str(), stdout);
}

}  // namespace

void AddPresetsCommand(CLI::App& app, Call& call) {
    CLI::App* command = app.add_subcommand("presets", "List the rooms that --preset knows by name");
    const auto json = std::make_shared<bool>(false);
    command->add_flag("--json", *json, "As JSON, with the decay times that each asks for");
    command->footer(
        "T30 (500 and 1000 Hz) and C80 were measured with the source 3 m ahead, on a ring of eight loudspeakers.\n"
        "Rooms of your own, NAME.room, are looked for in ~/.local/share/orvanverb/rooms.\n"
        "  orvanverb presets\n"
        "  orvanverb presets --json\n"
        "  orvanverb render voice.wav -o wet.wav --preset church");
    command->callback([&call, json] { call.Will([json] { ListPresets(*json); }); });
}

}  // namespace program
