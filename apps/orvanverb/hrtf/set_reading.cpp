#include "orvanverb/hrtf/set_reading.h"

#include <bit>
#include <exception>

#include "hrtf/sdif_access.h"
#include "hrtf/symmetric_transaural_data_loader.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/design/set_conversion.h"
#include "orvanverb/design/set_measurement.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/hrtf/sdif_set_writer.h"
#include "orvanverb/hrtf/sofa_file.h"

namespace program {

namespace {

constexpr char const* builtIn = "kemar";

/// A text of rows: for the ears, or, with 34 of them, for two loudspeakers.
Lume::SdifSet ReadColl(std::string const& path) {
    Lume::SdifSet set;
    LoadQuietly(path, [&](std::string const& name) {
        try {
            set = CopySet(Lume::Hrtf(name));
        } catch (std::exception const&) {
            try {
                set = CopySet(Lume::SymmetricTransauralDataLoader(name));
                return;
            } catch (std::exception const&) {
            }
            throw;
        }
    });
    return set;
}

}  // namespace

Lume::SdifSet ReadAnySet(std::string const& path, int rate) {
    if (path == builtIn) return CopySet(Lume::Hrtf::Builtin(static_cast<float>(rate)));
    RequireSetFile(path, ".hrtf, .near, .bin2trans or .coll");
    if (path.ends_with(".coll")) return ReadColl(path);
    Lume::SdifSet set;
    LoadQuietly(path, [&](std::string const& name) {
        try {
            set = Lume::ReadSdifSet(name, 1);
        } catch (std::exception const& error) {
            // Sets for loudspeakers that stand anywhere have two positions a point.
            if (std::string(error.what()).find("exception reading X") == std::string::npos) throw;
            set = Lume::ReadSdifSet(name, 2);
        }
    });
    return set;
}

bool IsBlockLength(unsigned int samples) {
    return samples <= maxBlockLength && std::has_single_bit(samples);
}

std::optional<unsigned int> BlockLengthOf(std::string const& path) {
    std::string text;
    LoadQuietly(path, [&](std::string const& name) {
        Lume::SdifGenInitCond("");
        const Lume::SdifFilePointer file(Lume::SdifFOpen(name.c_str(), Lume::SdifReadFile));
        if (file == nullptr) return;
        Lume::SdifFReadGeneralHeader(file.get());
        Lume::SdifFReadAllASCIIChunks(file.get());
        Lume::GetValueFromNVT(text, file.get(), "HrtfInfos", blockLengthKey);
    });
    if (text.empty()) return std::nullopt;
    const std::optional<unsigned int> length = ParseCount(text);
    if (!length || !IsBlockLength(*length))
        throw WorkError(path + ": is for blocks of '" + text + "' samples, which is no power of two from 1 to " +
                        std::to_string(maxBlockLength));
    return length;
}

Lume::Hrtf ReadHrtf(std::string const& path, int rate) {
    if (path == builtIn) return Lume::Hrtf::Builtin(static_cast<float>(rate));
    RequireSetFile(path, ".sofa, .coll or .hrtf");
    Lume::Hrtf set("");
    LoadQuietly(path, [&](std::string const& name) { set.LoadFromFile(name); });
    Lume::HrtfHeaderInfos const& header = set.GetHrtfHeaderInfos();
    if (header.hrtfType != Lume::hrtfBinaural || header.numChannels != 2 || header.filterType > Lume::hrtfFIR ||
        header.numPoints == 0 || header.numCoefficients == 0)
        throw WorkError(path + ": is no set of biquads or impulse responses for two ears");
    if (header.samplingRate < minRate || header.samplingRate > maxRate)
        throw WorkError(path + ": has a sample rate of " + std::to_string(header.samplingRate) +
                        " Hz; that of a .coll file stands in its name, as in NAME-SUBJECT-44100.coll");
    return set;
}

MeasuredSet ReadHead(std::string const& path) {
    if (path == builtIn) return MeasurePairs(Lume::SymmetricTransauralDataLoader(""));
    return IsSofa(path) ? ReadSofaFile(path) : MeasureSet(ReadHrtf(path, 0));
}

}  // namespace program
