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
    if (!words.outputs.empty()) decode.outputs = CountWithin("--outputs", words.outputs, "count", 2, 4);
    if (!words.convention.empty()) decode.convention = ParseConvention(words.convention);
    if (!words.sorting.empty()) decode.sorting = ParseSorting(words.sorting);
    if (decode.ambix && decode.sorting.value_or("IncreasingDegrees") != "IncreasingDegrees")
        throw UsageError("--ambix: means IncreasingDegrees");
    if (decode.fuma && (decode.ambix || decode.convention || decode.sorting))
        throw UsageError("--fuma: has its own order, weights and axes");
    if (!words.crossover.empty())
        decode.crossoverHz = NumberWithin("--crossover", words.crossover, "frequency", lowest, highest, " Hz");
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
    AddValue(*command, "--type", decode.type, "NAME", "What it is; --list shows what there is");
    AddValue(*command, "--sub-type", decode.subType, "NAME", "The network of the transaural type [shufflersymmetric]");
    AddValue(*command, "--speakers", decode.speakers, "LAYOUT",
             "Loudspeakers: a count, a name as 7.1.4 or dome24, or a file with one\n"
             "AZIMUTH [ELEVATION [DISTANCE]] a line\n"
             "[2 for transaural, cube for hoa3d, else 8]");
    AddValue(*command, "--outputs", words->outputs, "COUNT", "Channels of surround, bformat2uhj and uhj2bformat");
    AddValue(*command, "--convention", words->convention, "NAME", "SN3D or N3D, SN2D or N2D [SN3D, SN2D]");
    AddValue(*command, "--sorting", words->sorting, "NAME", "IncreasingDegrees (ACN) or AlternateDegrees");
    AddValue(*command, "--hoa-method", decode.hoaMethod, "NAME",
             "pseudoinverse, projection, or for irregular layouts in space allrad [pseudoinverse,\n"
             "allrad where the loudspeakers don't suit it]");
    AddValue(*command, "--weights", decode.weights, "NAME", "basic, inphase, maxre, basicmaxre or maxreinphase");
    AddValue(*command, "--crossover", words->crossover, "HZ", "Of basicmaxre and maxreinphase [700]");
    command->add_flag("--ambix", decode.ambix, "The sound field is AmbiX: ACN, SN3D (or --convention N3D), x ahead");
    command->add_flag("--fuma", decode.fuma, "The sound field is FuMa: W X Y Z, R S T ..., up to the order 3");
    AddOrientation(*command, words->common);
    AddValue(*command, "--scene", decode.scene, "FILE",
             "How the listener turns in a sound field: a file with one [SECONDS] orientation\n"
             "YAW PITCH ROLL a line");
    AddEars(*command, decode);
    AddValue(*command, "--filters", decode.filters, "FILE", "A set for the transaural network, .bin2trans or .coll");
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
        call.Will([options] { RunDecode(*options); });
    });
}

}  // namespace program
