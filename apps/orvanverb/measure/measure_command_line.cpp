#include "orvanverb/measure/measure_command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>

#include "orvanverb/common/gnuplot.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/measure/measure_command.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/options/options.h"

namespace program {

namespace {

struct Words {
    std::string bands = "octave", channel;
};

constexpr char const* footer =
    "Figures are those of ISO 3382-1; the energies of all channels count together, as a microphone among the\n"
    "loudspeakers would hear them. Where a figure can't be told, a line says why.\n"
    "  orvanverb ir -o hall.wav --preset hall --tail 3\n"
    "  orvanverb measure hall.wav --plot hall.svg\n"
    "  orvanverb measure yours.wav --bands third --against hall.wav";

void TakeMeaning(Words const& words, MeasureOptions& measure) {
    if (words.bands != "octave" && words.bands != "third")
        throw UsageError("--bands: '" + words.bands + "' is neither octave nor third");
    measure.thirds = words.bands == "third";
    if (!words.channel.empty()) {
        measure.channel = ParseCount(words.channel);
        if (!measure.channel || *measure.channel < 1)
            throw UsageError("--channel: '" + words.channel + "' is no channel from 1 on");
    }
    if (measure.plot) {
        RequirePictureName(*measure.plot);
        if (measure.inputs.size() > 1) throw UsageError("--plot: draws one response, not several");
    }
}

}  // namespace

void AddMeasureCommand(CLI::App& app, Call& call) {
    const auto options = std::make_shared<MeasureOptions>();
    MeasureOptions& measure = *options;
    const auto words = std::make_shared<Words>();
    CLI::App* command =
        app.add_subcommand("measure", "Measure impulse responses: decay, clarity, the ears' correlation and more");
    command->add_option("inputs", measure.inputs, "Impulse responses")->type_name("FILE")->required();
    AddValue(*command, "--bands", words->bands, "NAME", "octave or third [octave]");
    AddValue(*command, "--channel", words->channel, "COUNT", "Measure only this channel, counted from 1");
    AddValue(*command, "--against", measure.against, "FILE",
             "Compare with another response, in steps that one just hears");
    AddValue(*command, "--plot", measure.plot, "FILE", "Draw a picture, .svg or .png (needs gnuplot)");
    AddForce(*command, *options);
    command->add_flag("--json", measure.json, "Print all figures and curves as JSON, for programs");
    command->footer(footer);
    command->callback([&call, options, words] {
        TakeMeaning(*words, *options);
        options->AlsoReads("the --against", options->against);
        options->AlsoWrites("the --plot", options->plot);
        RequireSafeOutputs(*options);
        call.Will([options] { RunMeasure(*options); });
    });
}

}  // namespace program
