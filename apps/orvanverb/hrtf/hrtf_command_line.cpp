#include "orvanverb/hrtf/hrtf_command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>
#include <optional>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/design/transaural_design.h"
#include "orvanverb/hrtf/hrtf_commands.h"
#include "orvanverb/hrtf/set_reading.h"
#include "orvanverb/hrtf/transaural_conversion.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/options/option_values.h"

namespace program {

namespace {

struct Words {
    std::string rate, length, equalise;
};

struct TransauralWords {
    Words common;
    std::string maxGain, block, step;
    std::vector<std::string> pairs;  // two to a pair
};

void TakeRateAndEqualisation(Words const& words, HrtfOptions& options) {
    if (!words.rate.empty()) options.rate = ParseRate(words.rate);
    if (words.equalise.empty()) return;
    if (words.equalise != "diffuse" && words.equalise != "none")
        throw UsageError("--equalise: '" + words.equalise + "' is neither diffuse nor none");
    options.equalise = words.equalise == "diffuse";
}

void TakeMeaning(Words const& words, HrtfOptions& options) {
    TakeRateAndEqualisation(words, options);
    if (words.length.empty()) return;
    options.length = CountWithin("--length", words.length, "number of samples", 16, 65536);
    if (!options.fir) throw UsageError("--length: is for --fir");
}

std::vector<TransauralOptions::Pair> ParsePairs(std::vector<std::string> const& words, bool symmetric) {
    constexpr float nearest = 5.0f, farthest = 175.0f;
    std::vector<TransauralOptions::Pair> pairs;
    for (std::size_t i = 0; i + 2 <= words.size(); i += 2) {
        const TransauralOptions::Pair pair{
            NumberWithin("--pair", words[i], "number of degrees to the left", -farthest, -nearest),
            NumberWithin("--pair", words[i + 1], "number of degrees", nearest, farthest)};
        if (symmetric && pair.leftDeg != -pair.rightDeg)
            throw UsageError("--pair: " + words[i] + " and " + words[i + 1] +
                             " don't mirror each other, as this network needs it; there are asymmetric ones");
        pairs.push_back(pair);
    }
    return pairs;
}

void TakeTransauralMeaning(TransauralWords const& words, HrtfOptions& options) {
    TransauralOptions& transaural = options.transaural;
    const Lume::HrtfType type = TransauralTypeOf(transaural.network);
    TakeRateAndEqualisation(words.common, options);
    if (!words.common.length.empty())
        transaural.length = CountWithin("--length", words.common.length, "number of samples", 64, 8192);
    if (!words.maxGain.empty())
        transaural.maxGainDb = NumberWithin("--max-gain", words.maxGain, "number of decibels", 6.0f, 40.0f);
    if (!words.block.empty()) {
        const std::optional<unsigned int> block = ParseCount(words.block);
        if (!HasBlockLateLoop(type)) throw UsageError("--block: is for the recursive networks");
        if (!block || !IsBlockLength(*block))
            throw UsageError("--block: '" + words.block + "' is no power of two from 1 to " +
                             std::to_string(maxBlockLength));
        transaural.blockLength = *block;
    }
    if (!words.step.empty()) transaural.stepDeg = NumberWithin("--step", words.step, "number of degrees", 1.0f, 30.0f);
    transaural.pairs = ParsePairs(words.pairs, IsSymmetricNetwork(type));
    if (transaural.stepDeg && !transaural.pairs.empty()) throw UsageError("--step: is of the grid, in place of --pair");
}

void WillRun(Call& call, std::shared_ptr<HrtfOptions> const& options, int (*command)(HrtfOptions const&)) {
    options->AlsoReads("the input", options->input);
    RequireSafeOutputs(*options);
    call.run = [options, command] { return command(*options); };
}

void AddTransauralCommand(CLI::App& hrtf, Call& call, std::shared_ptr<HrtfOptions> const& shared) {
    HrtfOptions& options = *shared;
    TransauralOptions& transaural = options.transaural;
    CLI::App* command =
        hrtf.add_subcommand("transaural", "Make a .bin2trans file: filters for two loudspeakers, from a measured head");
    const auto words = std::make_shared<TransauralWords>();
    command->add_option("input", options.input, "A .sofa, .coll or .hrtf file, or kemar")->required()->type_name("IN");
    command->add_option("output", options.output, "The .bin2trans file to write")->required()->type_name("OUT");
    AddForce(*command, options);
    AddSummary(*command, options);
    command
        ->add_option("--network", transaural.network, "What it is for: a sub-type that orvanverb decode --list shows")
        ->required()
        ->type_name("NAME")
        ->take_last();
    command
        ->add_option("--pair", words->pairs,
                     "Azimuths of the loudspeakers, as -30 30; may be repeated\n"
                     "[a grid, from 10 degrees on either side]")
        ->type_name("LEFT RIGHT")
        ->type_size(2)
        ->allow_extra_args(false);
    AddValue(*command, "--step", words->step, "DEGREES",
             "Step of the grid in degrees [2.5 for symmetric networks, else 5]");
    AddValue(*command, "--length", words->common.length, "SAMPLES",
             "Samples of each filter [512 up to 48 kHz, more above]");
    AddValue(*command, "--max-gain", words->maxGain, "DB",
             "Most that cancelling may add [18]; less leaves more headroom, and cancels less\nin the lows");
    AddValue(*command, "--block", words->block, "SAMPLES",
             "Samples of the blocks in which a recursive network is to run [2]: the longer,\n"
             "the further apart the loudspeakers have to be");
    AddValue(*command, "--rate", words->common.rate, "HZ", "Sample rate of the filters [that of the input]");
    AddValue(*command, "--equalise", words->common.equalise, "HOW",
             "diffuse: take out what all directions have in common first; or none\n"
             "[diffuse for .sofa, none for the others]");
    command->footer(
        "  orvanverb hrtf transaural kemar pair.bin2trans --network shufflersymmetric --pair -28 28\n"
        "  orvanverb hrtf transaural me.sofa mine.bin2trans --network shufflersymmetric --pair -30 30 --max-gain 12");
    command->callback([&call, shared, words] {
        TakeTransauralMeaning(*words, *shared);
        WillRun(call, shared, MakeTransaural);
    });
}

}  // namespace

void AddHrtfCommand(CLI::App& app, Call& call) {
    const auto shared = std::make_shared<HrtfOptions>();
    HrtfOptions& options = *shared;
    CLI::App* hrtf =
        app.add_subcommand("hrtf", "Look at sets of filters for headphones and loudspeaker pairs, and make them");
    hrtf->require_subcommand(1);

    hrtf->footer(
        "  orvanverb hrtf convert me.sofa me.hrtf --fir\n"
        "  orvanverb hrtf info me.hrtf");
    CLI::App* info = hrtf->add_subcommand("info", "Show what a set says about itself, and check it");
    info->footer(
        "  orvanverb hrtf info kemar\n"
        "  orvanverb hrtf info kemar --rate 96000");
    info->add_option("file", options.input, "A .hrtf, .near, .bin2trans or .coll file, or kemar: the built-in set")
        ->required()
        ->type_name("FILE");
    info->add_flag("--json", options.json, "Print the same for programs");
    const auto infoRate = std::make_shared<std::string>();
    AddValue(*info, "--rate", *infoRate, "HZ",
             "Of kemar: the built-in set for this sample rate, or the nearest [44100]");
    info->callback([&call, shared, infoRate] {
        if (!infoRate->empty()) shared->rate = ParseRate(*infoRate);
        WillRun(call, shared, ShowHrtf);
    });

    CLI::App* convert = hrtf->add_subcommand("convert", "Make a .hrtf file, for your own ears or another sample rate");
    convert->footer(
        "  orvanverb hrtf convert me.sofa me.hrtf --rate 48000\n"
        "  orvanverb hrtf convert me.sofa long.hrtf --fir --length 256");
    const auto words = std::make_shared<Words>();
    convert->add_option("input", options.input, "A .sofa, .coll or .hrtf file, or kemar")->required()->type_name("IN");
    convert
        ->add_option("output", options.output,
                     "The .hrtf file to write; or a .coll text, for a head whose ears are alike, on the\n"
                     "grid of the built-in set")
        ->required()
        ->type_name("OUT");
    AddForce(*convert, options);
    AddSummary(*convert, options);
    AddValue(*convert, "--rate", words->rate, "HZ", "Sample rate of the filters [that of the input]");
    convert->add_flag(
        "--fir", options.fir,
        "Keep impulse responses; otherwise six second-order sections and a delay\nfor each ear are fitted");
    AddValue(*convert, "--length", words->length, "SAMPLES", "Most samples of an impulse response [512]");
    AddValue(*convert, "--equalise", words->equalise, "HOW",
             "diffuse: take out the diffuse field, the power mean of both ears over the sphere,\n"
             "which is what the ear canal, the microphone and the loudspeaker did in every\n"
             "direction; none: leave it in, for headphones that are equalised to a free field\n"
             "[diffuse for .sofa, none for the others]");
    convert->callback([&call, shared, words] {
        TakeMeaning(*words, *shared);
        WillRun(call, shared, ConvertHrtf);
    });
    AddTransauralCommand(*hrtf, call, shared);
}

}  // namespace program
