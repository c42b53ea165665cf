#include "orvanverb/hrtf/hrtf_commands.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <stdexcept>

#include "orvanverb/common/json.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/progress_line.h"
#include "orvanverb/common/text.h"
#include "orvanverb/common/whole_file.h"
#include "orvanverb/design/set_conversion.h"
#include "orvanverb/design/set_measurement.h"
#include "orvanverb/design/transaural_design.h"
#include "orvanverb/hrtf/coll_writer.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/hrtf/sdif_set_writer.h"
#include "orvanverb/hrtf/set_reading.h"
#include "orvanverb/hrtf/set_summary.h"
#include "orvanverb/hrtf/sofa_file.h"
#include "orvanverb/hrtf/transaural_conversion.h"

namespace program {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char const* author = "orvanverb " ORVANVERB_VERSION;

double SecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// The engine asks for the end of the name, and finds it anywhere in it.
bool IsNameOfSet(std::string const& path, std::string const& extension) {
    return path.ends_with(extension) && path.find(".coll", path.find_last_of('/') + 1) == std::string::npos;
}

std::string FactsText(std::string const& input, SetFacts const& facts, std::vector<std::string> const& faults) {
    constexpr std::size_t width = 18;
    std::string text = input + "\n";
    for (auto [name, value] : facts) {
        name.resize(std::max(width, name.size() + 2), ' ');
        text.append("  ").append(name).append(value).append("\n");
    }
    for (std::string const& fault : faults) text.append("  FAULT: ").append(fault).append("\n");
    return faults.empty() ? text + "  no fault found\n" : text;
}

std::string FactsJson(std::string const& input, SetFacts const& facts, std::vector<std::string> const& faults) {
    JsonObject json;
    json.Add("file", JsonString(input));
    for (auto [name, value] : facts) {
        std::replace(name.begin(), name.end(), ' ', '_');
        json.Add(name, JsonString(value));
    }
    json.Add("faults", JsonStrings(faults));
    return json.Text() + "\n";
}

/// What a command has written, for programs.
JsonObject SummaryOf(std::string const& output, Lume::SdifSet const& set) {
    JsonObject json;
    json.Add("output", JsonString(output));
    json.Add("type", JsonString(Lume::GetHrtfTypeName(set.header.hrtfType)));
    json.Add("points", std::to_string(set.header.numPoints));
    json.Add("filters", JsonString(Lume::GetHrtfFilterTypeName(set.header.filterType)));
    json.Add("coefficients", std::to_string(set.header.numCoefficients));
    json.Add("samplerate", std::to_string(set.header.samplingRate));
    return json;
}

}  // namespace

int ShowHrtf(HrtfOptions const& options) {
    const Lume::SdifSet set = ReadAnySet(options.input, options.rate.value_or(0));
    SetFacts facts = DescribeHeader(set.header, BlockLengthOf(options.input));
    const SetCheck check = CheckSet(set);
    facts.insert(facts.end(), check.findings.begin(), check.findings.end());
    std::fputs(
        (options.json ? FactsJson(options.input, facts, check.faults) : FactsText(options.input, facts, check.faults))
            .c_str(),
        stdout);
    return check.faults.empty() ? 0 : 1;
}

int ConvertHrtf(HrtfOptions const& options) {
    const bool text = options.output.ends_with(".coll");
    if (!text && !IsNameOfSet(options.output, ".hrtf"))
        throw UsageError(options.output + ": the name of a set for the panners ends in .hrtf or .coll");
    if (options.quiet) BeQuiet();
    WholeFile file(options.output);
    const auto begin = Clock::now();
    const bool measurements = IsSofa(options.input);
    MeasuredSet measured;
    Lume::SdifSet set;
    std::optional<ConversionErrors> errors;  // of a fit
    bool asItIs = false;
    if (measurements) {
        measured = ReadSofaFile(options.input);
    } else {
        const Lume::Hrtf filters = ReadHrtf(options.input, options.rate.value_or(0));
        const bool isFir = filters.GetHrtfHeaderInfos().filterType == Lume::hrtfFIR;
        asItIs = isFir == options.fir &&
                 options.rate.value_or(static_cast<int>(filters.GetSamplingRate())) ==
                     static_cast<int>(filters.GetSamplingRate()) &&
                 !options.equalise.value_or(false) && !options.length;
        if (asItIs)
            set = CopySet(filters);
        else
            measured = MeasureSet(filters);
    }
    if (!asItIs) {
        ConversionSettings settings;
        settings.samplerate = options.rate.value_or(measured.samplerate);
        settings.fir = options.fir;
        settings.length = options.length.value_or(settings.length);
        settings.equalise = options.equalise.value_or(measurements);
        if (!settings.fir) Say("fitting " + std::to_string(2 * measured.directions.size()) + " filters ...");
        ProgressLine progress(stderr);
        settings.tell = [&](double part) { progress.ShowPart("fitting", part); };
        ConversionErrors found;
        try {
            set = ConvertSet(measured, settings, found);
        } catch (std::invalid_argument const& error) {
            throw WorkError(options.input + ": " + error.what());
        }
        progress.Wipe();
        if (!settings.fir) {
            errors = found;
            Say("  difference in bands of one ERB: mean " + FixedText(found.mean, 2) + " dB, worst " +
                FixedText(found.worst, 2) + " dB");
        }
    }
    try {
        file.Write(text ? CollText(set) : SdifSetBytes(set, author));
    } catch (std::invalid_argument const& error) {
        throw WorkError(options.output + ": " + error.what());
    }
    Say(options.output + ": " + std::to_string(set.header.numPoints) + " directions, " +
        Lume::GetHrtfFilterTypeName(set.header.filterType) + ", " + std::to_string(set.header.numCoefficients) +
        " coefficients an ear, " + std::to_string(set.header.samplingRate) + " Hz, " +
        FixedText(SecondsSince(begin), 1) + " s");
    if (!options.json) return 0;
    JsonObject json = SummaryOf(options.output, set);
    if (errors) {
        json.Add("mean_error_db", JsonNumber(errors->mean, 2));
        json.Add("worst_error_db", JsonNumber(errors->worst, 2));
    }
    std::printf("%s\n", json.Text().c_str());
    return 0;
}

int MakeTransaural(HrtfOptions const& options) {
    TransauralOptions const& transaural = options.transaural;
    if (!IsNameOfSet(options.output, ".bin2trans"))
        throw UsageError(options.output + ": the name of a set for loudspeakers ends in .bin2trans");
    if (options.quiet) BeQuiet();
    WholeFile file(options.output);
    const auto begin = Clock::now();
    const MeasuredSet head = ReadHead(options.input);
    Lume::SdifSet set;
    try {
        set = MakeTransauralSet(head, transaural, options.rate.value_or(head.samplerate),
                                options.equalise.value_or(IsSofa(options.input)));
    } catch (std::invalid_argument const& error) {
        throw WorkError(options.input + ": " + error.what());
    }
    const bool blockwise = HasBlockLateLoop(set.header.hrtfType);
    file.Write(SdifSetBytes(set, author, blockwise ? std::optional(transaural.blockLength) : std::nullopt));
    const std::string blocks =
        blockwise ? ", for blocks of " + std::to_string(transaural.blockLength) + " samples" : std::string();
    Say(options.output + ": " + std::to_string(set.header.numPoints) + " pairs of loudspeakers, " +
        std::to_string(set.header.numChannels) + " filters of " + std::to_string(set.header.numCoefficients) +
        " samples each, " + std::to_string(set.header.samplingRate) + " Hz" + blocks + ", " +
        FixedText(SecondsSince(begin), 1) + " s");
    if (options.json) std::printf("%s\n", SummaryOf(options.output, set).Text().c_str());
    return 0;
}

}  // namespace program
