#include "orvanverb/render.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "orvanverb/impulse.h"
#include "orvanverb/input_bank.h"
#include "orvanverb/interrupt.h"
#include "orvanverb/peak_meter.h"
#include "orvanverb/program_error.h"
#include "orvanverb/progress_line.h"
#include "orvanverb/room_object.h"
#include "orvanverb/room_setup.h"
#include "orvanverb/speaker_layout.h"
#include "orvanverb/text.h"
#include "orvanverb/vector_channels.h"

namespace program {

namespace {

constexpr int defaultImpulseRate = 48000;  // [Hz]

void Say(std::string const& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
}

SampleFormat ChooseFormat(Options const& options) {
    return options.format.value_or(options.output.ends_with(".flac") ? SampleFormat::Flac : SampleFormat::Float);
}

/// Sends the whole signal and the tail through the room into the file. One vector after the other: memory does not grow
/// with the length. What the scene has for a vector happens before it.
/// @return false if the tail came to its bound before the room had died away
bool Stream(SignalSource& source, RoomObject& room, Scene& scene, SpeakerLayout const& layout, Tail tail,
            AudioOutput& output, PeakMeter& meter) {
    const std::size_t vectorSize = room.VectorSize();
    VectorChannels inputs(room.NumSources(), vectorSize);
    VectorChannels outputs(room.NumSpeakers(), vectorSize);
    std::vector<float const*> fileChannels;
    for (const std::size_t index : layout.fileOrder) fileChannels.push_back(outputs.Pointers()[index]);

    ProgressLine progress(stderr);
    const std::uint64_t maxTail = tail.MaxFrames(room.Samplerate());
    const double expectedSeconds =
        (source.ExpectedFrames() + (tail.IsAuto() ? 0.0 : static_cast<double>(maxTail))) / room.Samplerate();
    std::uint64_t tailFrames = 0, frames = 0;
    for (bool ended = false; !Interrupted();) {
        const std::size_t fresh = source.Read(inputs.Pointers(), vectorSize);
        ended = ended || fresh < vectorSize;
        frames += vectorSize;
        for (std::string const& line : scene.Play(room, frames)) Say(line);
        room.Process(outputs.Pointers(), inputs.Pointers());

        const auto ofTail = static_cast<std::size_t>(std::min<std::uint64_t>(vectorSize - fresh, maxTail - tailFrames));
        tailFrames += ofTail;
        meter.Add(fileChannels.data(), fresh + ofTail);
        output.Write(fileChannels.data(), fresh + ofTail);
        progress.Show(static_cast<double>(output.NumFrames()) / room.Samplerate(), expectedSeconds);
        if (!ended) continue;
        if (tail.HasDiedAway(meter.LastBlock(), meter.Loudest(), ofTail, room.Samplerate())) return true;
        if (tailFrames == maxTail) return !tail.IsAuto();
    }
    throw WorkError("interrupted, nothing written");
}

void Report(std::string const& path, SampleFormat format, AudioOutput const& output, PeakMeter const& meter,
            SpeakerLayout const& layout, int samplerate, double elapsedSeconds) {
    const double seconds = static_cast<double>(output.NumFrames()) / samplerate;
    Say(path + ": " + std::to_string(layout.positions.size()) + " channels, " + Describe(format) + ", " +
        std::to_string(samplerate) + " Hz, " + FixedText(seconds, 3) + " s, " +
        FixedText(seconds / std::max(elapsedSeconds, 1e-6), 0) + " times faster than real time");
    for (std::size_t c = 0; c < layout.positions.size(); ++c)
        Say("  channel " + std::to_string(c + 1) + " (azimuth " +
            FixedText(static_cast<double>(layout.AzimuthDeg(c)), 0) + "): peak " + DecibelText(meter.Peaks()[c]) +
            " dBFS");
    if (output.NumClipped() > 0)
        Say(path + ": " + std::to_string(output.NumClipped()) +
            " samples went beyond full scale and were clipped; --format float keeps them");
}

}  // namespace

void Run(Options const& options) {
    const auto begin = std::chrono::steady_clock::now();
    std::unique_ptr<SignalSource> source;
    InputBank const* bank = nullptr;
    int samplerate = options.rate.value_or(defaultImpulseRate);
    if (options.command == Options::Command::Render) {
        auto inputs = std::make_unique<InputBank>(options.inputs, options.rate, options.inTurnSeconds);
        samplerate = inputs->Samplerate();
        bank = inputs.get();
        source = std::move(inputs);
    } else {
        source = std::make_unique<Impulse>();
    }

    RoomSetup setup(options, source->NumChannels());
    SpeakerLayout const& layout = setup.layout;
    const std::unique_ptr<RoomObject> room = setup.MakeRoom();
    room->Start(samplerate, options.vectorSize);

    const SampleFormat format = ChooseFormat(options);
    const auto numChannels = static_cast<unsigned int>(layout.positions.size());
    AudioOutput output(options.output, format, samplerate, numChannels, layout.channelMask);
    PeakMeter meter(numChannels);
    const bool diedAway = Stream(*source, *room, setup.scene, layout, options.tail, output, meter);
    output.Commit();

    Report(options.output, format, output, meter, layout, samplerate,
           std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    if (!diedAway)
        Say("--tail auto: ended at its bound of " + FixedText(Tail::maxAutoSeconds, 0) +
            " s, the room still sounds at " + DecibelText(meter.LastBlock()) + " dBFS");
    if (bank != nullptr)
        for (std::string const& remark : bank->Remarks()) Say(remark);
}

}  // namespace program
