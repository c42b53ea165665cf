#include "orvanverb/scene/scene_command.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <set>

#include "orvanverb/common/gnuplot.h"
#include "orvanverb/common/json.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/hrtf/ears_cache.h"
#include "orvanverb/layout/speaker_layout.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/options/option_values.h"
#include "orvanverb/room/room_object.h"
#include "orvanverb/room/scene.h"
#include "orvanverb/room/source_motion.h"
#include "orvanverb/scene/plan.h"

namespace program {

namespace {

struct SceneOptions : Options {
    std::string file;
    CommonWords words;
    std::string numSources;
};

constexpr char const* checkFooter =
    "Every line is tried as `orvanverb render` would, and all that is wrong is said, with its line.\n"
    "  orvanverb scene check walk.scene\n"
    "  orvanverb scene check duet.scene --sources 2 --speakers 8";

constexpr char const* plotFooter =
    "Listener, loudspeakers and the sources' ways from above, with times, and the distances over time.\n"
    "  orvanverb scene plot walk.scene -o walk.svg\n"
    "  orvanverb scene plot walk.scene -o walk.png --speakers 8";

/// As many as asked for, or as the scene speaks of.
unsigned int NumSources(SceneOptions const& options, unsigned int named) {
    if (options.numSources.empty()) return std::clamp(named, 1u, maxSources);
    return CountWithin("--sources", options.numSources, "count", 1, maxSources);
}

std::string TimeText(double seconds) {
    const double minutes = std::floor(seconds / 60.0);
    const std::string rest = NumberText(static_cast<float>(seconds - 60.0 * minutes));
    return FixedText(minutes, 0) + (seconds - 60.0 * minutes < 10.0 ? ":0" : ":") + rest;
}

int Check(SceneOptions const& options) {
    std::vector<Scene::Remark> remarks;
    const Scene scene(options.file, &remarks);
    const unsigned int numSources = NumSources(options, scene.HighestSource());
    const SpeakerLayout layout = SpeakerLayout::Parse(options.speakers.value_or(defaultSpeakers));
    constexpr int samplerate = 48000;  // [Hz]
    EarsCache ears(samplerate, EarsCache::Fitting::quick);
    RoomObject room(numSources, static_cast<unsigned int>(layout.positions.size()), "8", nullptr, ears);
    room.PlaceSources();
    room.PlaceSpeakers(layout.positions);
    room.RemarkSettings();
    room.TakeRemarks();  // of the layout: not the scene's
    const auto tell = [&room](std::string_view message, std::filesystem::path const& folder) {
        room.ForgetRemarks();
        room.Tell(message, folder);
        return room.TakeRemarks();
    };
    for (Scene::Remark& remark : scene.Try(tell)) remarks.push_back(std::move(remark));
    room.RemarkSettings();
    for (std::string const& remark : room.TakeRemarks())
        remarks.push_back({std::numeric_limits<int>::max(), options.file + ": at the end: " + remark});
    std::stable_sort(remarks.begin(), remarks.end(), [](auto const& a, auto const& b) { return a.line < b.line; });
    std::string text;
    std::set<std::string> told;  // both ends of a movement may have the same fault
    std::vector<std::string> faults;
    for (Scene::Remark const& remark : remarks)
        if (told.insert(remark.text).second) faults.push_back(remark.text);
    for (std::string const& fault : faults) text += fault + "\n";
    if (options.json) {
        JsonObject json;
        json.Add("file", JsonString(options.file));
        json.Add("timed_lines", std::to_string(scene.NumTimed()));
        json.Add("end_s", JsonNumber(scene.EndSeconds(), 3));
        json.Add("sources", std::to_string(numSources));
        json.Add("faults", JsonStrings(faults));
        text = json.Text() + "\n";
    } else if (remarks.empty()) {
        const std::size_t lines = scene.NumTimed();
        text = options.file + ": " + std::to_string(lines) + (lines == 1 ? " line" : " lines") + " with a time" +
               (lines == 0 ? "" : ", until " + TimeText(scene.EndSeconds())) + "; " + std::to_string(numSources) +
               (numSources == 1 ? " source\n" : " sources\n");
    }
    std::fputs(text.c_str(), stdout);
    return remarks.empty() ? 0 : 1;
}

int Plot(SceneOptions const& options) {
    constexpr double momentsPerSecond = 50.0;
    constexpr double mostMessages = 3e6;  // seconds of work
    Scene scene(options.file);
    unsigned int named = scene.HighestSource();
    const double seconds = scene.EndSeconds();
    const double mostMoments = std::clamp(mostMessages / static_cast<double>(scene.NumMovements()), 10.0, 3000.0);
    for (Options::SourcePlace const& place : options.sources) named = std::max(named, place.number);
    const double rate = std::min(momentsPerSecond, mostMoments / seconds);
    SourceMotion motion(NumSources(options, named), options, std::move(scene), rate);
    const auto numMoments = static_cast<std::size_t>(std::ceil(seconds * rate)) + 1;
    Plan plan;
    plan.title = std::filesystem::path(options.file).filename().string();
    for (std::size_t i = 0; i < numMoments; ++i) {
        for (std::string const& line : motion.Advance(i + 1)) Say(line);
        plan.moments.push_back({static_cast<double>(i) / rate, motion.Positions()});
    }
    if (options.speakers) plan.speakers = SpeakerLayout::Parse(*options.speakers).positions;
    if (plan.speakers.size() == 2) plan.speakers.clear();
    DrawPlan(options.output, plan);
    return 0;
}

CLI::App* AddSubcommand(CLI::App& parent, SceneOptions& options, char const* name, char const* help,
                        char const* footer) {
    CLI::App* command = parent.add_subcommand(name, help);
    command->add_option("scene", options.file, "The scene")->type_name("FILE")->required();
    AddValue(*command, "--sources", options.numSources, "COUNT", "How many there are [as many as the scene names]");
    AddValue(*command, "--speakers", options.speakers, "LAYOUT",
             "Loudspeakers: a count, or a file with one AZIMUTH [ELEVATION [DISTANCE]] a line");
    command->footer(footer);
    return command;
}

}  // namespace

void AddSceneCommand(CLI::App& app, Call& call) {
    CLI::App* scene = app.add_subcommand("scene", "Check a scene, or draw it");
    scene->require_subcommand(1);
    scene->footer(
        "  orvanverb scene check walk.scene\n"
        "  orvanverb scene plot walk.scene -o walk.svg");
    const auto options = std::make_shared<SceneOptions>();
    CLI::App* check =
        AddSubcommand(*scene, *options, "check", "Say everything that is wrong with a scene", checkFooter);
    check->add_flag("--json", options->json, "Print the same for programs");
    check->callback([&call, options] { call.run = [options] { return Check(*options); }; });
    CLI::App* plot =
        AddSubcommand(*scene, *options, "plot", "Draw where the sources go, .svg or .png (needs gnuplot)", plotFooter);
    plot->add_option("-o,--output", options->output, "The picture, .svg or .png")
        ->type_name("FILE")
        ->required()
        ->take_last();
    AddForce(*plot, *options);
    plot->callback([&call, options] {
        RequirePictureName(options->output);
        options->scene = options->file;
        RequireSafeOutputs(*options);
        call.run = [options] { return Plot(*options); };
    });
}

}  // namespace program
