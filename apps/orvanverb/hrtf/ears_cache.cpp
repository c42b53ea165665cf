#include "orvanverb/hrtf/ears_cache.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/progress_line.h"
#include "orvanverb/common/user_folder.h"
#include "orvanverb/common/whole_file.h"
#include "orvanverb/design/set_conversion.h"
#include "orvanverb/hrtf/sdif_set_writer.h"
#include "orvanverb/hrtf/sofa_file.h"
#include "room/file_checksum.h"

namespace program {

namespace {

namespace fs = std::filesystem;

constexpr char const* ending = ".hrtf";

std::string Digits(std::uint64_t checksum) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(checksum));
    return digits;
}

std::uint64_t ChecksumOf(fs::path const& path) {
    try {
        return Lume::FileChecksum(path);
    } catch (std::runtime_error const& error) {
        throw WorkError(error.what());
    }
}

Lume::EarsFile Describe(fs::path const& path) {
    std::error_code error;
    if (!fs::exists(path, error)) throw WorkError(path.string() + ": " + std::generic_category().message(ENOENT));
    if (!fs::is_regular_file(path, error)) throw WorkError(path.string() + ": is no file");
    return {fs::absolute(path), ChecksumOf(path)};
}

/// Whether a file holds what its name says.
bool IsWhole(fs::path const& path) {
    return path.stem().string().ends_with(Digits(ChecksumOf(path)));
}

/// What was fitted before. @param name  but for the checksum of the file
std::optional<fs::path> FindKept(fs::path const& folder, std::string const& name) {
    std::error_code none;
    for (auto const& entry : fs::directory_iterator(folder, none))
        if (entry.path().filename().string().starts_with(name) && entry.path().extension() == ending &&
            entry.is_regular_file(none) && IsWhole(entry.path()))
            return entry.path();
    return std::nullopt;
}

fs::path NewTemporaryFile() {
    std::error_code error;
    std::string name = (fs::temp_directory_path(error) / "orvanverb-XXXXXX").string() + ending;
    const int descriptor = error ? -1 : mkstemps(name.data(), static_cast<int>(std::string(ending).size()));
    if (descriptor < 0)
        throw WorkError(name + ": " + (error ? error.message() : std::generic_category().message(errno)));
    close(descriptor);
    return name;
}

}  // namespace

EarsCache::EarsCache(int newSamplerate, Fitting newFitting, Listener newListener)
    : samplerate(newSamplerate), fitting(newFitting), listener(std::move(newListener)) {
    if (!listener.say) listener.say = Say;
    if (!listener.warn) listener.warn = Warn;
}

EarsCache::Temporary::~Temporary() {
    std::error_code none;
    fs::remove(path, none);
}

fs::path EarsCache::Playable(fs::path const& path) {
    return IsSofa(path.string()) ? FittedFor(Describe(path)) : path;
}

Lume::EarsFile EarsCache::Playable(Lume::EarsFile const& ears) {
    if (!IsSofa(ears.path.string())) return ears;
    const Lume::EarsFile measurements = Describe(ears.path);
    if (measurements.checksum != ears.checksum)
        throw WorkError(ears.path.string() + ": has changed since the state was saved");
    const fs::path set = FittedFor(measurements);
    return {set, ChecksumOf(set)};
}

Lume::EarsFile EarsCache::Original(Lume::EarsFile const& ears) const {
    for (Fitted const& known : fitted)
        if (known.set == ears.path) return known.measurements;
    return ears;
}

fs::path EarsCache::FittedFor(Lume::EarsFile const& measurements) {
    for (Fitted const& known : fitted)
        if (known.measurements.checksum == measurements.checksum && known.measurements.path == measurements.path)
            return known.set;
    fitted.push_back({measurements, Fit(measurements)});
    return fitted.back().set;
}

fs::path EarsCache::Fit(Lume::EarsFile const& measurements) {
    const std::string name =
        Digits(measurements.checksum) + "-" + std::to_string(samplerate) + "-" ORVANVERB_VERSION "-";
    const fs::path folder = fitting != Fitting::anew ? UserFolder("XDG_CACHE_HOME", ".cache") : fs::path();
    if (!folder.empty())
        if (const std::optional<fs::path> kept = FindKept(folder, name)) return *kept;
    const std::string bytes = FittedBytes(measurements.path);
    if (!folder.empty() && fitting == Fitting::kept) {
        std::error_code error;
        fs::create_directories(folder, error);
        try {
            fs::path file = folder / (name + Digits(Lume::Checksum(bytes)) + ending);
            WholeFile(file.string()).Write(bytes);
            return file;
        } catch (WorkError const& failure) {  // the set is there all the same
            listener.warn(std::string("warning: the fitted set isn't kept: ") + failure.what());
        }
    }
    temporary.push_back(std::make_unique<Temporary>(NewTemporaryFile()));
    WholeFile(temporary.back()->path.string()).Write(bytes);
    return temporary.back()->path;
}

std::string EarsCache::FittedBytes(fs::path const& path) const {
    const MeasuredSet measured = ReadSofaFile(path.string());
    const bool quick = fitting == Fitting::quick;
    const std::string rate = std::to_string(samplerate) + " Hz";
    listener.say(path.string() + (quick ? ": would be fitted for " + rate
                                        : ": fitting " + std::to_string(2 * measured.directions.size()) +
                                              " filters for " + rate + ", which takes a while ..."));
    std::optional<ProgressLine> progress;
    if (!listener.tell) progress.emplace(stderr);
    ConversionSettings settings;
    settings.samplerate = samplerate;
    settings.fir = quick;
    settings.tell = [&](double part) { progress ? progress->ShowPart("fitting", part) : listener.tell(part); };
    ConversionErrors errors;
    try {
        return SdifSetBytes(ConvertSet(measured, settings, errors), "orvanverb " ORVANVERB_VERSION);
    } catch (std::invalid_argument const& refusal) {
        throw WorkError(path.string() + ": " + refusal.what());
    }
}

}  // namespace program
