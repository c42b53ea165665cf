#include "orvanverb/decode/decode_command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>

#include "orvanverb/common/part_file.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/decode/decode_command.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/options/option_values.h"

namespace program {

namespace {

struct Words {
    CommonWords common;
    std::string input, outputs, convention, sorting, crossover;
};

void TakeMeaning(Words const& words, DecodeOptions& decode) {
    constexpr float lowest = 20.0f, highest = 20000.0f;
    TakeCommonMeaning(words.common, decode);
    if (decode.list) return;
    decode.AlsoReads("the --filters", decode.filters);
    if (words.input.empty()) throw UsageError("input: a recording is required");
    decode.inputs = {words.input};
    if (decode.type.empty()) throw UsageError("--type: is required; orvanverb decode --list shows them");
    if (!words.outputs.empty()) {
        decode.outputs = ParseCount(words.outputs);
        if (!decode.outputs || *decode.outputs < 2 || *decode.outputs > 4)
            throw UsageError("--outputs: '" + words.outputs + "' is no count from 2 to 4");
    }
    if (!words.convention.empty()) decode.convention = ParseConvention(words.convention);
    if (!words.sorting.empty()) decode.sorting = ParseSorting(words.sorting);
    if (decode.ambix && decode.sorting.value_or("IncreasingDegrees") != "IncreasingDegrees")
        throw UsageError("--ambix: means IncreasingDegrees");
    if (decode.fuma && (decode.ambix || decode.convention || decode.sorting))
        throw UsageError("--fuma: has its own order, weights and axes");
    if (!words.crossover.empty()) {
        decode.crossoverHz = ParseNumber(words.crossover);
        if (!decode.crossoverHz || *decode.crossoverHz < lowest || *decode.crossoverHz > highest)
            throw UsageError("--crossover: '" + words.crossover + "' is no frequency from 20 to 20000 Hz");
    }
    if (decode.output == standardOutputName && decode.matrix)
        throw UsageError("--matrix: is printed on standard output, where the feeds go");
    if (decode.matrix && decode.json)
        throw UsageError("--matrix: is printed on standard output, where the summary of --json goes");
    if (decode.output.empty() && !decode.matrix) throw UsageError("--output: is required");
}

}  // namespace

void AddDecodeCommand(CLI::App& app, Call& call) {
    const auto options = std::make_shared<DecodeOptions>();
    DecodeOptions& decode = *options;
    const auto words = std::make_shared<Words>();
    CLI::App* command = app.add_subcommand("decode", "Turn ambisonic, matrixed or binaural recordings into feeds");
    command->add_option("input", words->input, "A recording; its channels are those of the format. - is standard input")
        ->type_name("FILE");
    command->add_option("--type", decode.type, "What it is; --list shows what there is")
        ->type_name("NAME")
        ->take_last();
    command->add_option("--sub-type", decode.subType, "The network of the transaural type [shufflersymmetric]")
        ->type_name("NAME")
        ->take_last();
    command
        ->add_option("--speakers", decode.speakers,
                     "Loudspeakers: a count, a name as 7.1.4 or dome24, or a file with one\n"
                     "AZIMUTH [ELEVATION [DISTANCE]] a line\n"
                     "[2 for transaural, cube for hoa3d, else 8]")
        ->type_name("LAYOUT")
        ->take_last();
    command->add_option("--outputs", words->outputs, "Channels of surround, bformat2uhj and uhj2bformat")
        ->type_name("COUNT")
        ->take_last();
    command->add_option("--convention", words->convention, "SN3D or N3D, SN2D or N2D [SN3D, SN2D]")
        ->type_name("NAME")
        ->take_last();
    command->add_option("--sorting", words->sorting, "IncreasingDegrees (ACN) or AlternateDegrees")
        ->type_name("NAME")
        ->take_last();
    command
        ->add_option("--hoa-method", decode.hoaMethod,
                     "pseudoinverse, projection, or for irregular layouts in space allrad [pseudoinverse,\n"
                     "allrad where the loudspeakers don't suit it]")
        ->type_name("NAME")
        ->take_last();
    command->add_option("--weights", decode.weights, "basic, inphase, maxre, basicmaxre or maxreinphase")
        ->type_name("NAME")
        ->take_last();
    command->add_option("--crossover", words->crossover, "Of basicmaxre and maxreinphase [700]")
        ->type_name("HZ")
        ->take_last();
    command->add_flag("--ambix", decode.ambix, "The sound field is AmbiX: ACN, SN3D (or --convention N3D), x ahead");
    command->add_flag("--fuma", decode.fuma, "The sound field is FuMa: W X Y Z, R S T ..., up to the order 3");
    AddOrientation(*command, words->common);
    command
        ->add_option("--scene", decode.scene,
                     "How the listener turns in a sound field: a file with one [SECONDS] orientation\n"
                     "YAW PITCH ROLL a line")
        ->type_name("FILE")
        ->take_last();
    AddEars(*command, decode);
    command->add_option("--filters", decode.filters, "A set for the transaural network, .bin2trans or .coll")
        ->type_name("FILE")
        ->take_last();
    AddFileOptions(*command, decode, words->common, "Time behind the end of the input [0.1, or 0 for ambix and fuma]");
    command->add_flag("--list", decode.list, "Show the types and what each takes");
    command->add_flag("--matrix", decode.matrix, "Print the ambisonic decoder's gains, condition and regularity");
    command->footer(
        "  orvanverb decode field.wav -o feeds.wav --type hoa3d --ambix --speakers dome24\n"
        "  orvanverb decode ears.wav -o pair.wav --type transaural\n"
        "  orvanverb decode --list");
    command->callback([&call, options, words] {
        TakeMeaning(*words, *options);
        RequireSafeOutputs(*options);
        call.run = [options] {
            RunDecode(*options);
            return 0;
        };
    });
}

}  // namespace program
