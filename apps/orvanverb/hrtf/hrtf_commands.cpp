#include "orvanverb/hrtf/hrtf_commands.h"

#include <chrono>
#include <cstdio>
#include <exception>

#include "hrtf/coll_file.h"
#include "hrtf/hrtf.h"
#include "hrtf/nearfield_compensation_filters.h"
#include "hrtf/symmetric_transaural_data_loader.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/hrtf/sdif_set_writer.h"
#include "orvanverb/hrtf/set_conversion.h"
#include "orvanverb/hrtf/set_summary.h"
#include "orvanverb/hrtf/sofa_file.h"
#include "orvanverb/limits.h"
#include "orvanverb/program_error.h"
#include "orvanverb/text.h"
#include "orvanverb/whole_file.h"

namespace program {

namespace {

constexpr char const* builtIn = "kemar";

/// A text of rows: for the ears, or, with 34 of them, for two loudspeakers.
Lume::SdifSet ReadColl(std::string const& path) {
    Lume::SdifSet set;
    LoadQuietly(path, [&] {
        try {
            set = CopySet(Lume::Hrtf(path));
        } catch (std::exception const&) {
            try {
                set = CopySet(Lume::SymmetricTransauralDataLoader(path));
                return;
            } catch (std::exception const&) {
            }
            throw;
        }
    });
    return set;
}

Lume::SdifSet ReadAnySet(std::string const& path) {
    if (path == builtIn) return CopySet(Lume::Hrtf(""));
    RequireSetFile(path, ".hrtf, .near, .bin2trans or .coll");
    if (Lume::CheckFileExtension(path, ".coll")) return ReadColl(path);
    Lume::SdifSet set;
    LoadQuietly(path, [&] {
        try {
            set = Lume::ReadSdifSet(path, 1);
        } catch (std::exception const& error) {
            // Sets for loudspeakers that stand anywhere have two positions a point.
            if (std::string(error.what()).find("exception reading X") == std::string::npos) throw;
            set = Lume::ReadSdifSet(path, 2);
        }
    });
    return set;
}

bool IsSofa(std::string const& path) {
    return path.ends_with(".sofa") || path.ends_with(".SOFA");
}

/// A set of the engine to convert.
Lume::Hrtf ReadHrtf(std::string const& path) {
    if (path == builtIn) return Lume::Hrtf("");
    RequireSetFile(path, ".sofa, .coll or .hrtf");
    Lume::Hrtf set("");
    LoadQuietly(path, [&] { set.LoadFromFile(path); });
    Lume::HrtfHeaderInfos const& header = set.GetHrtfHeaderInfos();
    if (header.hrtfType != Lume::hrtfBinaural || header.numChannels != 2 || header.filterType > Lume::hrtfFIR ||
        header.numPoints == 0 || header.numCoefficients == 0)
        throw WorkError(path + ": is no set of biquads or impulse responses for two ears");
    if (header.samplingRate < minRate || header.samplingRate > maxRate)
        throw WorkError(path + ": has a sample rate of " + std::to_string(header.samplingRate) +
                        " Hz; that of a .coll file stands in its name, as in NAME-SUBJECT-44100.coll");
    return set;
}

}  // namespace

int ShowHrtf(HrtfOptions const& options) {
    const Lume::SdifSet set = ReadAnySet(options.input);
    std::string text = options.input + "\n";
    const auto add = [&](std::vector<std::string> const& lines) {
        for (std::string const& line : lines) text.append("  ").append(line).append("\n");
    };
    add(DescribeHeader(set.header));
    const SetCheck check = CheckSet(set);
    add(check.findings);
    for (std::string const& fault : check.faults) text.append("  FAULT: ").append(fault).append("\n");
    if (check.faults.empty()) text.append("  no fault found\n");
    std::fputs(text.c_str(), stdout);
    return check.faults.empty() ? 0 : 1;
}

void ConvertHrtf(HrtfOptions const& options) {
    // The engine asks for the end of the name, and finds it anywhere.
    if (!options.output.ends_with(".hrtf") || options.output.find(".coll") != std::string::npos)
        throw UsageError(options.output + ": the name of a set for the panners ends in .hrtf");
    WholeFile file(options.output);
    const auto begin = std::chrono::steady_clock::now();
    const bool measurements = IsSofa(options.input);
    MeasuredSet measured;
    Lume::SdifSet set;
    bool asItIs = false;
    if (measurements) {
        measured = ReadSofaFile(options.input);
    } else {
        const Lume::Hrtf filters = ReadHrtf(options.input);
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
        ConversionErrors errors;
        try {
            set = ConvertSet(measured, settings, errors);
        } catch (std::invalid_argument const& error) {
            throw WorkError(options.input + ": " + error.what());
        }
        if (!settings.fir)
            std::fprintf(stderr, "  difference in bands of one ERB: mean %s dB, worst %s dB\n",
                         FixedText(errors.mean, 2).c_str(), FixedText(errors.worst, 2).c_str());
    }
    file.Write(SdifSetBytes(set, "orvanverb " ORVANVERB_VERSION));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    std::fprintf(stderr, "%s: %u directions, %s, %u coefficients an ear, %u Hz, %s s\n", options.output.c_str(),
                 set.header.numPoints, Lume::GetHrtfFilterTypeName(set.header.filterType).c_str(),
                 set.header.numCoefficients, set.header.samplingRate, FixedText(seconds, 1).c_str());
}

}  // namespace program
