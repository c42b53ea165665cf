#include "orvanverb/audio/streaming.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/progress_line.h"
#include "orvanverb/common/text.h"
#include "room/sample_guard.h"

namespace program {

StreamEnd Stream(SignalSource& source, Streaming const& streaming, AudioOutput& output, PeakMeter& meter) {
    const std::size_t vectorSize = streaming.vectorSize;
    VectorChannels inputs(streaming.numInputs, vectorSize);
    VectorChannels outputs(streaming.numOutputs, vectorSize);
    std::vector<float const*> fileChannels;
    const std::vector<float> silence(vectorSize, 0.0f);
    for (const std::size_t index : streaming.fileOrder)
        fileChannels.push_back(index < streaming.numOutputs ? outputs.Pointers()[index] : silence.data());

    Lume::OutputGuard guard;
    guard.Configure(static_cast<float>(streaming.samplerate));
    ProgressLine progress(stderr);
    Tail tail = streaming.tail;
    const std::uint64_t maxTail = tail.MaxFrames(streaming.samplerate);
    const double expectedSeconds =
        (source.ExpectedFrames() + (tail.IsAuto() ? 0.0 : static_cast<double>(maxTail))) / streaming.samplerate;
    std::uint64_t tailFrames = 0, frames = 0;
    for (bool ended = false;;) {
        const std::size_t fresh = source.Read(inputs.Pointers(), vectorSize);
        ended = ended || fresh < vectorSize;
        frames += vectorSize;
        if (streaming.prepare) streaming.prepare(frames);
        streaming.process(outputs.Pointers(), inputs.Pointers());
        if (guard.Check(outputs.Pointers(), streaming.numOutputs, vectorSize) && streaming.clear) streaming.clear();
        if (streaming.gain != 1.0f)
            for (std::size_t c = 0; c < streaming.numOutputs; ++c)
                for (float& sample : std::span(outputs.Pointers()[c], vectorSize)) sample *= streaming.gain;

        const auto ofTail = static_cast<std::size_t>(std::min<std::uint64_t>(vectorSize - fresh, maxTail - tailFrames));
        tailFrames += ofTail;
        meter.Add(fileChannels.data(), fresh + ofTail);
        output.Write(fileChannels.data(), fresh + ofTail);
        progress.Show(static_cast<double>(output.NumFrames()) / streaming.samplerate, expectedSeconds);
        if (!ended) continue;
        if (tail.HasDiedAway(meter.LastBlock(), meter.Loudest(), ofTail, streaming.samplerate))
            return {true, guard.NumBad()};
        if (tailFrames == maxTail) return {!tail.IsAuto(), guard.NumBad()};
    }
}

void ReportOutput(std::string const& path, AudioFormat const& format, AudioOutput const& output, PeakMeter const& meter,
                  std::vector<std::string> const& channels, int samplerate, double elapsedSeconds) {
    const double seconds = static_cast<double>(output.NumFrames()) / samplerate;
    Say(path + ": " + std::to_string(channels.size()) + " channels, " + Describe(format) + ", " +
        std::to_string(samplerate) + " Hz, " + FixedText(seconds, 3) + " s, " +
        FixedText(seconds / std::max(elapsedSeconds, 1e-6), 0) + " times faster than real time");
    for (std::size_t c = 0; c < channels.size(); ++c)
        Say("  channel " + std::to_string(c + 1) + " (" + channels[c] + "): peak " + DecibelText(meter.Peaks()[c]) +
            " dBFS");
    if (output.NumClipped() > 0) {
        const float tenths = std::floor(200.0f * std::log10(meter.Loudest()) + 1.0f);
        Say(path + ": " + std::to_string(output.NumClipped()) +
            " samples went beyond full scale and were clipped; 32-bit float keeps them, or a --gain lower by " +
            FixedText(static_cast<double>(tenths) / 10.0, 1) + " dB");
    }
}

void RequireSound(std::string const& path, std::uint64_t numBad) {
    if (numBad > 0)
        throw WorkError(path + ": " + std::to_string(numBad) +
                        " samples were infinite, not a number or beyond 120 dBFS and became silence");
}

}  // namespace program
