#include "orvanverb/hrtf/hrtf_commands.h"

#include <chrono>
#include <cstdio>
#include <optional>
#include <stdexcept>

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

}  // namespace

int ShowHrtf(HrtfOptions const& options) {
    const Lume::SdifSet set = ReadAnySet(options.input, options.rate.value_or(0));
    std::string text = options.input + "\n";
    const auto add = [&](std::vector<std::string> const& lines) {
        for (std::string const& line : lines) text.append("  ").append(line).append("\n");
    };
    add(DescribeHeader(set.header, BlockLengthOf(options.input)));
    const SetCheck check = CheckSet(set);
    add(check.findings);
    for (std::string const& fault : check.faults) text.append("  FAULT: ").append(fault).append("\n");
    if (check.faults.empty()) text.append("  no fault found\n");
    std::fputs(text.c_str(), stdout);
    return check.faults.empty() ? 0 : 1;
}

int ConvertHrtf(HrtfOptions const& options) {
    const bool text = options.output.ends_with(".coll");
    if (!text && !IsNameOfSet(options.output, ".hrtf"))
        throw UsageError(options.output + ": the name of a set for the panners ends in .hrtf or .coll");
    WholeFile file(options.output);
    const auto begin = Clock::now();
    const bool measurements = IsSofa(options.input);
    MeasuredSet measured;
    Lume::SdifSet set;
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
        if (!settings.fir) std::fprintf(stderr, "fitting %zu filters ...\n", 2 * measured.directions.size());
        ProgressLine progress(stderr);
        settings.tell = [&](double part) { progress.ShowPart("fitting", part); };
        ConversionErrors errors;
        try {
            set = ConvertSet(measured, settings, errors);
        } catch (std::invalid_argument const& error) {
            throw WorkError(options.input + ": " + error.what());
        }
        progress.Wipe();
        if (!settings.fir)
            std::fprintf(stderr, "  difference in bands of one ERB: mean %s dB, worst %s dB\n",
                         FixedText(errors.mean, 2).c_str(), FixedText(errors.worst, 2).c_str());
    }
    try {
        file.Write(text ? CollText(set) : SdifSetBytes(set, author));
    } catch (std::invalid_argument const& error) {
        throw WorkError(options.output + ": " + error.what());
    }
    const double seconds = SecondsSince(begin);
    std::fprintf(stderr, "%s: %u directions, %s, %u coefficients an ear, %u Hz, %s s\n", options.output.c_str(),
                 set.header.numPoints, Lume::GetHrtfFilterTypeName(set.header.filterType).c_str(),
                 set.header.numCoefficients, set.header.samplingRate, FixedText(seconds, 1).c_str());
    return 0;
}

int MakeTransaural(HrtfOptions const& options) {
    TransauralOptions const& transaural = options.transaural;
    if (!IsNameOfSet(options.output, ".bin2trans"))
        throw UsageError(options.output + ": the name of a set for loudspeakers ends in .bin2trans");
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
    std::fprintf(stderr, "%s: %u pairs of loudspeakers, %u filters of %u samples each, %u Hz%s, %s s\n",
                 options.output.c_str(), set.header.numPoints, set.header.numChannels, set.header.numCoefficients,
                 set.header.samplingRate, blocks.c_str(), FixedText(SecondsSince(begin), 1).c_str());
    return 0;
}

}  // namespace program
