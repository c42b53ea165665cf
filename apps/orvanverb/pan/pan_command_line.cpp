#include "orvanverb/pan/pan_command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/options/option_values.h"
#include "orvanverb/pan/pan_command.h"

namespace program {

namespace {

struct Words {
    CommonWords common;
    std::string outputs, convention, sorting;
};

constexpr char const* footer =
    "Angles are the listener's: azimuth 0 is ahead, +90 right, -90 left; elevation 90 is above. Distances are in\n"
    "metres. Without --source and --scene, sources stand at the built-in places for their number.\n"
    "  orvanverb pan voice.wav -o five.wav --method vbap2d --speakers 5 --source 1 20 0 2\n"
    "  orvanverb pan voice.wav -o walk.amb.wav --ambix --order 3 --scene walk.scene\n"
    "  orvanverb pan --list";

void TakeMeaning(Words const& words, PanOptions& pan) {
    TakeCommonMeaning(words.common, pan);
    if (pan.list) return;
    pan.AlsoReads("the --nearfield", pan.nearfield);
    if (pan.method == "ambix" || (pan.method.empty() && pan.ambix)) {
        pan.method = "hoa3d";
        pan.ambix = true;
    }
    if (pan.method.empty()) throw UsageError("--method: is required; orvanverb pan --list shows them");
    if (!words.outputs.empty()) {
        pan.outputs = ParseCount(words.outputs);
        if (!pan.outputs) throw UsageError("--outputs: '" + words.outputs + "' is no count");
    }
    if (!words.convention.empty()) pan.convention = ParseConvention(words.convention);
    if (!words.sorting.empty()) pan.sorting = ParseSorting(words.sorting);
    if (pan.ambix &&
        (pan.convention.value_or("SN3D") != "SN3D" || pan.sorting.value_or("IncreasingDegrees") != "IncreasingDegrees"))
        throw UsageError("--ambix: means SN3D and IncreasingDegrees");
    if ((pan.gains || pan.triplets) && (pan.json || pan.dryRun))
        throw UsageError(std::string(pan.json ? "--json" : "--dry-run") + ": is for a rendering, not for tables");
    if (pan.gains || pan.triplets) return;
    if (pan.inputs.empty()) throw UsageError("inputs: a recording is required");
    if (pan.output.empty()) throw UsageError("--output: is required");
}

}  // namespace

void AddPanCommand(CLI::App& app, Call& call) {
    const auto options = std::make_shared<PanOptions>();
    PanOptions& pan = *options;
    const auto words = std::make_shared<Words>();
    CLI::App* command = app.add_subcommand("pan", "Pan recordings with one method, without a room");
    AddInputs(*command, pan, words->common);
    AddValue(*command, "--method", pan.method, "NAME", "How; --list shows what there is");
    AddValue(*command, "--model,--sub-type", pan.model, "NAME",
             "For headphones: direct, nearfield, sphericalhead, snowman; or early, diffuse");
    AddValue(*command, "--speakers", pan.speakers, "LAYOUT",
             "Loudspeakers: a count, a name as 5.1 7.1.4 22.2 dome24 cube (a wrong one shows\n"
             "all), or a file with one AZIMUTH [ELEVATION [DISTANCE]] a line");
    AddValue(*command, "--outputs", words->outputs, "COUNT", "Channels of an ambisonic method");
    AddOrder(*command, words->common, "Order of an ambisonic method, in place of the count");
    AddValue(*command, "--convention", words->convention, "NAME", "SN3D or N3D for hoa3d, SN2D or N2D for hoa2d");
    AddValue(*command, "--sorting", words->sorting, "NAME", "IncreasingDegrees (ACN) or AlternateDegrees");
    command->add_flag("--ambix", pan.ambix, "The method hoa3d as other tools read it: ACN, SN3D, x ahead");
    AddPlaces(*command, pan, words->common);
    AddEars(*command, pan);
    AddValue(*command, "--near", pan.nearfield, "FILE",
             "A set of near-field compensation filters, for --model nearfield");
    AddFileOptions(*command, pan, words->common, "Time behind the end of the input [0, or 0.1 for filters and delays]");
    command->add_flag("--list", pan.list, "Show the methods and how many outputs each has");
    command->add_flag("--gains", pan.gains, "Print the gains of a source at every azimuth");
    command->add_flag("--triplets", pan.triplets, "Print the triplets of loudspeakers that vbap chooses");
    command->footer(footer);
    command->callback([&call, options, words] {
        TakeMeaning(*words, *options);
        RequireSafeOutputs(*options);
        call.Will([options] { RunPan(*options); });
    });
}

}  // namespace program
