#include "orvanverb/hrtf/hrtf_command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>

#include "orvanverb/option_values.h"
#include "orvanverb/program_error.h"
#include "orvanverb/text.h"

namespace program {

namespace {

struct Words {
    std::string rate, length, equalise;
};

void TakeMeaning(Words const& words, HrtfOptions& options) {
    constexpr unsigned int minLength = 16, maxLength = 65536;
    if (!words.rate.empty()) options.rate = ParseRate(words.rate);
    if (!words.length.empty()) {
        const std::optional<unsigned int> length = ParseCount(words.length);
        if (!length || *length < minLength || *length > maxLength)
            throw UsageError("--length: '" + words.length + "' is no number of samples from " +
                             std::to_string(minLength) + " to " + std::to_string(maxLength));
        if (!options.fir) throw UsageError("--length: is for --fir");
        options.length = *length;
    }
    if (!words.equalise.empty()) {
        if (words.equalise != "diffuse" && words.equalise != "none")
            throw UsageError("--equalise: '" + words.equalise + "' is neither diffuse nor none");
        options.equalise = words.equalise == "diffuse";
    }
}

}  // namespace

CLI::App* AddHrtfCommand(CLI::App& app, Options& all) {
    HrtfOptions& options = all.hrtf;
    CLI::App* hrtf = app.add_subcommand("hrtf", "Look at sets of filters for headphones, and make them");
    hrtf->require_subcommand(1);

    CLI::App* info = hrtf->add_subcommand("info", "Show what a set says about itself, and check it");
    info->add_option("file", options.input, "A .hrtf, .near, .bin2trans or .coll file, or kemar: the built-in set")
        ->required()
        ->type_name("FILE");
    info->callback([&options] { options.action = HrtfOptions::Action::Info; });
    hrtf->callback([&all] { all.command = Options::Command::Hrtf; });

    CLI::App* convert = hrtf->add_subcommand("convert", "Make a .hrtf file, for your own ears or another sample rate");
    const auto words = std::make_shared<Words>();
    convert->add_option("input", options.input, "A .sofa, .coll or .hrtf file, or kemar")->required()->type_name("IN");
    convert->add_option("output", options.output, "The .hrtf file to write")->required()->type_name("OUT");
    convert->add_option("--rate", words->rate, "Sample rate of the filters [that of the input]")
        ->type_name("HZ")
        ->take_last();
    convert->add_flag(
        "--fir", options.fir,
        "Keep impulse responses; otherwise six second-order sections and a delay\nfor each ear are fitted");
    convert->add_option("--length", words->length, "Most samples of an impulse response [512]")
        ->type_name("SAMPLES")
        ->take_last();
    convert
        ->add_option("--equalise", words->equalise,
                     "diffuse: take out what all directions have in common; or none\n"
                     "[diffuse for .sofa, none for the others]")
        ->type_name("HOW")
        ->take_last();
    convert->callback([&options, words] {
        options.action = HrtfOptions::Action::Convert;
        TakeMeaning(*words, options);
    });
    return hrtf;
}

}  // namespace program
