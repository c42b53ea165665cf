#include "orvanverb/job/dry_run.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

#include "orvanverb/common/json.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/part_file.h"
#include "orvanverb/common/text.h"
#include "orvanverb/options/file_roles.h"

namespace program {

namespace {

/// How long an output gets, and how large, as far as that can be told before.
struct Extent {
    std::optional<double> seconds, tailSeconds;  // of the input; of the tail, if it is fixed
    std::optional<double> bytesPerSecond;        // none where samples are packed
};

Extent ExtentOf(SignalSource const& source, Machine const& machine, AudioFormat const& format, int samplerate) {
    Extent extent;
    if (source.ExpectedFrames() > 0.0) extent.seconds = source.ExpectedFrames() / samplerate;
    if (!machine.tail.IsAuto())
        extent.tailSeconds = static_cast<double>(machine.tail.MaxFrames(samplerate)) / samplerate;
    if (const std::size_t bytes = format.BytesPerSample())
        extent.bytesPerSecond = static_cast<double>(bytes * machine.channels.size()) * samplerate;
    return extent;
}

std::string Megabytes(double bytes) {
    return FixedText(bytes / 1e6, bytes < 1e7 ? 2 : 0) + " MB";
}

std::string ExtentText(Extent const& extent) {
    std::string text = extent.seconds ? FixedText(*extent.seconds + extent.tailSeconds.value_or(0.0), 3) + " s"
                                      : "as long as its input";
    if (!extent.seconds && extent.tailSeconds) text += " and " + FixedText(*extent.tailSeconds, 3) + " s";
    if (!extent.tailSeconds) text += " and until it has died away";
    if (!extent.bytesPerSecond) return text;
    if (extent.seconds && extent.tailSeconds)
        return text + ", " + Megabytes(*extent.bytesPerSecond * (*extent.seconds + *extent.tailSeconds));
    return text + ", " + Megabytes(*extent.bytesPerSecond) + " for each second";
}

std::string OriginText(SignalSource::Origin const& origin) {
    std::string text = Counted(origin.numChannels, "channel") + ", " + std::to_string(origin.samplerate) + " Hz";
    if (origin.numFrames > 0)
        text += ", " + FixedText(static_cast<double>(origin.numFrames) / origin.samplerate, 3) + " s";
    return text;
}

std::string Json(Options const& options, SignalSource const& source, Machine const& machine, AudioFormat const& format,
                 int samplerate, Extent const& extent) {
    JsonArray reads, writes;
    for (SignalSource::Origin const& origin : source.Origins()) {
        JsonObject file;
        file.Add("file", JsonString(origin.path));
        file.Add("channels", std::to_string(origin.numChannels));
        file.Add("samplerate", std::to_string(origin.samplerate));
        file.Add("seconds", origin.numFrames == 0
                                ? "null"
                                : JsonNumber(static_cast<double>(origin.numFrames) / origin.samplerate, 3));
        reads.Add(file.Text());
    }
    for (auto const& [list, files] : {std::pair{&reads, OtherReadFiles(options)}, {&writes, WrittenFiles(options)}})
        for (Options::NamedFile const& named : files) {
            JsonObject file;
            file.Add("file", JsonString(named.path));
            file.Add("role", JsonString(named.role));
            list->Add(file.Text());
        }
    JsonObject summary;
    summary.Add("dry_run", "true");
    summary.Add("reads", reads.Text());
    summary.Add("writes", writes.Text());
    summary.Add("format", JsonString(Describe(format)));
    summary.Add("samplerate", std::to_string(samplerate));
    summary.Add("channels", JsonStrings(machine.channels));
    summary.Add("seconds", extent.seconds ? JsonNumber(*extent.seconds, 3) : "null");
    summary.Add("tail_seconds", extent.tailSeconds ? JsonNumber(*extent.tailSeconds, 3) : "null");
    summary.Add("bytes_per_second", extent.bytesPerSecond ? JsonNumber(*extent.bytesPerSecond, 0) : "null");
    summary.Add("warnings", JsonStrings(Warnings()));
    return summary.Text() + "\n";
}

}  // namespace

void AnnounceJob(Options const& options, SignalSource const& source, Machine const& machine, AudioFormat const& format,
                 int samplerate) {
    for (Options::NamedFile const& file : WrittenFiles(options)) RequireWritable(file.path);
    const Extent extent = ExtentOf(source, machine, format, samplerate);
    for (SignalSource::Origin const& origin : source.Origins())
        Say("would read " + origin.path + ": " + OriginText(origin));
    for (Options::NamedFile const& file : OtherReadFiles(options)) Say("would read " + file.path + ", " + file.role);
    Say("would write " + options.output + ": " + Counted(machine.channels.size(), "channel") + ", " + Describe(format) +
        ", " + std::to_string(samplerate) + " Hz, " + ExtentText(extent));
    for (std::size_t c = 0; c < machine.channels.size(); ++c)
        Say("  channel " + std::to_string(c + 1) + " (" + machine.channels[c] + ")");
    for (Options::NamedFile const& file : WrittenFiles(options))
        if (file.path != options.output) Say("would write " + file.path + ", " + file.role);
    if (options.json) std::fputs(Json(options, source, machine, format, samplerate, extent).c_str(), stdout);
}

}  // namespace program
