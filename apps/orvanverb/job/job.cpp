#include "orvanverb/job/job.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "orvanverb/audio/impulse.h"
#include "orvanverb/audio/input_bank.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/json.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/progress_line.h"
#include "orvanverb/common/text.h"
#include "orvanverb/job/dry_run.h"

namespace program {

namespace {

constexpr int defaultImpulseRate = 48000;  // [Hz]

double Decibels(float linear) {
    return 20.0 * std::log10(static_cast<double>(linear));
}

/// "1.234 s in channel 2".
std::string PlaceText(PeakMeter const& meter, int samplerate) {
    return FixedText(static_cast<double>(meter.LoudestPlace().frame) / samplerate, 3) + " s in channel " +
           std::to_string(meter.LoudestPlace().channel + 1);
}

}  // namespace

Job::Job(Options const& newOptions, std::unique_ptr<SignalSource> newSource, int newSamplerate)
    : options(newOptions), source(std::move(newSource)), samplerate(newSamplerate) {}

Job::Job(Options const& newOptions) : options(newOptions) {
    if (options.quiet) BeQuiet();
    if (options.inputs.empty()) {
        source = std::make_unique<Impulse>();
        samplerate = options.rate.value_or(defaultImpulseRate);
    } else {
        auto inputs = std::make_unique<InputBank>(options.inputs, options.rate, options.inTurnSeconds);
        samplerate = inputs->Samplerate();
        source = std::move(inputs);
    }
}

void Job::Run(Machine const& machine) {
    const AudioFormat format = ChooseFormat(options.format, options.output);
    const unsigned int numChannels = machine.layout->NumFileChannels();
    AudioOutput::RequireChannels(options.output, format, numChannels);
    if (IsDry()) return AnnounceJob(options, *source, machine, format, samplerate);

    AudioOutput output(options.output, format, samplerate, numChannels, machine.layout->channelMask);
    PeakMeter meter(numChannels);
    std::unique_ptr<ScratchFile> waiting;
    if (options.normalizeDb) waiting = std::make_unique<ScratchFile>(options.output);
    std::vector<float> interleaved;
    const StreamEnd end = StreamAndShow(machine, meter, [&](float const* const* channels, std::size_t frames) {
        if (!waiting) return output.Write(channels, frames);
        interleaved.clear();
        AppendInterleaved(interleaved, channels, numChannels, frames);
        waiting->Write(interleaved.data(), interleaved.size());
    });
    const float normalizing = waiting ? Normalize(*waiting, output, meter) : 1.0f;
    output.Commit();
    Tell(machine, format, output, meter, normalizing);
    if (!end.diedAway)
        Warn("--tail auto: ended at its bound of " + FixedText(Tail::maxAutoSeconds, 0) +
             " s, the room still sounds at " + DecibelText(meter.LastBlock()) + " dBFS");
    if (const std::string remark = machine.pendingRemark ? machine.pendingRemark() : ""; !remark.empty()) Warn(remark);
    for (std::string const& remark : source->Remarks()) Warn(remark);
    if (options.json) std::fputs(Json(machine, format, output, meter, normalizing).c_str(), stdout);
    RequireSound(options.output, end.numBad);
}

StreamEnd Job::StreamAndShow(Machine const& machine, PeakMeter& meter, PieceWriter const& write) {
    const double fixedTail = machine.tail.IsAuto() ? 0.0 : static_cast<double>(machine.tail.MaxFrames(samplerate));
    const double expectedSeconds = (source->ExpectedFrames() + fixedTail) / samplerate;
    ProgressLine progress(stderr);
    std::uint64_t written = 0;
    return Stream(*source, machine, samplerate, options.gain, meter,
                  [&](float const* const* channels, std::size_t frames) {
                      write(channels, frames);
                      written += frames;
                      progress.Show(static_cast<double>(written) / samplerate, expectedSeconds);
                  });
}

/// Writes what has waited, so that its loudest sample comes to where it is wanted, and not above.
float Job::Normalize(ScratchFile& waiting, AudioOutput& output, PeakMeter& meter) const {
    constexpr std::size_t pieceSamples = 1 << 16;
    const float wanted = std::pow(10.0f, *options.normalizeDb / 20.0f), peak = meter.Loudest();
    float gain = peak > 0.0f ? wanted / peak : 1.0f;
    while (gain * peak > wanted) gain = std::nextafter(gain, 0.0f);
    if (peak <= 0.0f) Warn("--normalize: the output is silent, there is nothing to raise");
    meter.Scale(gain);
    waiting.Rewind();
    const std::size_t numChannels = meter.Peaks().size();
    std::vector<float> piece(pieceSamples / numChannels * numChannels);
    while (const std::size_t got = waiting.Read(piece.data(), piece.size())) {
        for (float& sample : piece) sample *= gain;
        output.WriteInterleaved({piece.data(), got});
    }
    return gain;
}

void Job::Tell(Machine const& machine, AudioFormat const& format, AudioOutput const& output, PeakMeter const& meter,
               float normalizing) const {
    const double seconds = static_cast<double>(output.NumFrames()) / samplerate;
    const double elapsed = std::chrono::duration<double>(Clock::now() - begin).count();
    Say(options.output + ": " + Counted(machine.channels.size(), "channel") + ", " + Describe(format) + ", " +
        std::to_string(samplerate) + " Hz, " + FixedText(seconds, 3) + " s, " +
        FixedText(seconds / std::max(elapsed, 1e-6), 0) + " times faster than real time");
    for (std::size_t c = 0; c < machine.channels.size(); ++c)
        Say("  channel " + std::to_string(c + 1) + " (" + machine.channels[c] + "): peak " +
            DecibelText(meter.Peaks()[c]) + " dBFS");
    std::string line = "  peak " + DecibelText(meter.Loudest()) + " dBFS";
    if (meter.Loudest() > 0.0f) line.append(" at ").append(PlaceText(meter, samplerate));
    if (options.normalizeDb) line += ", by a gain of " + FixedText(Decibels(normalizing), 1) + " dB";
    for (std::string const& level : levels) line.append("; ").append(level);
    Say(line);
    if (output.NumClipped() > 0) {
        const float tenths = std::floor(200.0f * std::log10(meter.Loudest()) + 1.0f);
        Warn(options.output + ": " + std::to_string(output.NumClipped()) +
             " samples went beyond full scale and were clipped, the worst by " + DecibelText(meter.Loudest()) +
             " dB at " + PlaceText(meter, samplerate) +
             "; 32-bit float keeps them, or --normalize -1, or a --gain lower by " +
             FixedText(static_cast<double>(tenths) / 10.0, 1) + " dB");
    }
    if (!machine.remark.empty()) Say(machine.remark);
}

std::string Job::Json(Machine const& machine, AudioFormat const& format, AudioOutput const& output,
                      PeakMeter const& meter, float normalizing) const {
    JsonObject summary;
    summary.Add("output", JsonString(options.output));
    summary.Add("format", JsonString(Describe(format)));
    summary.Add("samplerate", std::to_string(samplerate));
    summary.Add("frames", std::to_string(output.NumFrames()));
    summary.Add("seconds", JsonNumber(static_cast<double>(output.NumFrames()) / samplerate, 3));
    summary.Add("peak_dbfs", JsonNumber(Decibels(meter.Loudest()), 2));
    summary.Add("peak_seconds", JsonNumber(static_cast<double>(meter.LoudestPlace().frame) / samplerate, 3));
    summary.Add("peak_channel", std::to_string(meter.LoudestPlace().channel + 1));
    summary.Add("clipped_samples", std::to_string(output.NumClipped()));
    summary.Add("gain_db", JsonNumber(Decibels(options.gain * normalizing), 2));
    for (auto const& [name, json] : figures) summary.Add(name, json);
    JsonArray channels;
    for (std::size_t c = 0; c < machine.channels.size(); ++c) {
        JsonObject channel;
        channel.Add("name", JsonString(machine.channels[c]));
        channel.Add("peak_dbfs", JsonNumber(Decibels(meter.Peaks()[c]), 2));
        channels.Add(channel.Text());
    }
    summary.Add("channels", channels.Text());
    summary.Add("warnings", JsonStrings(Warnings()));
    return summary.Text() + "\n";
}

void RequireSound(std::string const& path, std::uint64_t numBad) {
    if (numBad > 0)
        throw WorkError(path + ": " + std::to_string(numBad) +
                        " samples were infinite, not a number or beyond 120 dBFS and became silence");
}

}  // namespace program
