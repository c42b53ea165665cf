#include "orvanverb/job/streaming.h"

#include <algorithm>
#include <span>

#include "orvanverb/audio/vector_channels.h"
#include "room/sample_guard.h"

namespace program {

StreamEnd Stream(SignalSource& source, Machine const& machine, int samplerate, float gain, PeakMeter& meter,
                 PieceWriter const& write) {
    const std::size_t vectorSize = machine.vectorSize;
    VectorChannels inputs(machine.numInputs, vectorSize);
    const std::size_t numOutputs = machine.layout->NumOutputs();
    VectorChannels outputs(numOutputs, vectorSize);
    std::vector<float const*> fileChannels;
    const std::vector<float> silence(vectorSize, 0.0f);
    for (const std::size_t index : machine.layout->fileOrder)
        fileChannels.push_back(index < numOutputs ? outputs.Pointers()[index] : silence.data());

    Lume::OutputGuard guard;
    guard.Configure(static_cast<float>(samplerate));
    Tail tail = machine.tail;
    const std::uint64_t maxTail = tail.MaxFrames(samplerate);
    std::uint64_t tailFrames = 0, frames = 0;
    for (bool ended = false;;) {
        const std::size_t fresh = source.Read(inputs.Pointers(), vectorSize);
        ended = ended || fresh < vectorSize;
        frames += vectorSize;
        if (machine.prepare) machine.prepare(frames);
        machine.process(outputs.Pointers(), inputs.Pointers());
        if (guard.Check(outputs.Pointers(), numOutputs, vectorSize) && machine.clear) machine.clear();
        if (gain != 1.0f)
            for (std::size_t c = 0; c < numOutputs; ++c)
                for (float& sample : std::span(outputs.Pointers()[c], vectorSize)) sample *= gain;

        const auto ofTail = static_cast<std::size_t>(std::min<std::uint64_t>(vectorSize - fresh, maxTail - tailFrames));
        tailFrames += ofTail;
        meter.Add(fileChannels.data(), fresh + ofTail);
        write(fileChannels.data(), fresh + ofTail);
        if (!ended) continue;
        if (tail.HasDiedAway(meter.LastBlock(), meter.Loudest(), ofTail, samplerate)) return {true, guard.NumBad()};
        if (tailFrames == maxTail) return {!tail.IsAuto(), guard.NumBad()};
    }
}

}  // namespace program
