#include "orvanverb-live/audio/recorder.h"

#include <algorithm>
#include <bit>
#include <chrono>

#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"

namespace live {

namespace {

constexpr unsigned int ringSeconds = 4;  // that a disk may take to come to itself
constexpr std::chrono::milliseconds pause{50};

}  // namespace

Recorder::Recorder(std::string const& newPath, int samplerate, program::SpeakerLayout const& layout)
    : path(newPath),
      numChannels(layout.NumOutputs()),
      capacity(std::bit_ceil(static_cast<std::size_t>(samplerate) * ringSeconds)),
      fileOrder(layout.fileOrder),
      ring((numChannels + 1) * capacity),
      output(path, program::ChooseFormat({}, path), samplerate, layout.NumFileChannels(), layout.channelMask),
      thread([this] { Run(); }) {}

Recorder::~Recorder() {
    ends = true;
    if (thread.joinable()) thread.join();
}

void Recorder::Add(float const* const* channels, std::size_t numSamples) noexcept {
    const std::uint64_t at = written.load(std::memory_order_relaxed);
    if (at + numSamples - read.load(std::memory_order_acquire) > capacity) {
        lost.fetch_add(numSamples, std::memory_order_relaxed);
        return;
    }
    const std::size_t begin = at % capacity, first = std::min(numSamples, capacity - begin);
    for (std::size_t c = 0; c < numChannels; ++c) {
        std::copy_n(channels[c], first, &ring[c * capacity + begin]);
        std::copy_n(channels[c] + first, numSamples - first, &ring[c * capacity]);
    }
    written.store(at + numSamples, std::memory_order_release);
}

void Recorder::WaitForPlace(std::size_t numSamples) const {
    while (written + numSamples - read > capacity) std::this_thread::sleep_for(pause);
}

void Recorder::WriteWaiting() {
    std::vector<float const*> channels(fileOrder.size());
    for (std::uint64_t at = read; at < written.load(std::memory_order_acquire);) {
        const std::size_t begin = at % capacity;
        const std::size_t count = std::min<std::size_t>(written - at, capacity - begin);
        // Behind the channels stands silence, for channels of the file that nobody plays.
        for (std::size_t c = 0; c < fileOrder.size(); ++c)
            channels[c] = &ring[std::min(fileOrder[c], numChannels) * capacity + begin];
        output.Write(channels.data(), count);
        at += count;
        read.store(at, std::memory_order_release);
    }
}

void Recorder::Run() {
    try {
        while (!ends) {
            WriteWaiting();
            std::this_thread::sleep_for(pause);
        }
        WriteWaiting();
    } catch (program::ProgramError const& error) {
        failure = error.what();
        program::Say(failure + "; the recording has ended, the sound goes on");
        while (!ends) {
            read.store(written);
            std::this_thread::sleep_for(pause);
        }
    }
}

void Recorder::Finish() {
    ends = true;
    thread.join();
    if (!failure.empty()) throw program::WorkError(failure);
    const std::uint64_t frames = output.NumFrames();
    output.Commit();
    program::Say(path + ": " + std::to_string(frames) + " frames were recorded");
    if (lost > 0)
        throw program::WorkError(path + ": the disk was too slow, " + std::to_string(lost.load()) +
                                 " frames are missing");
}

}  // namespace live
