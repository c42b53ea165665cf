#include "orvanverb-live/room/player.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>

#include "dsp/constants.h"

namespace live {

namespace {

Lume::Room& Begin(Lume::Room& room, Lume::RoomState const& state, int samplerate, std::size_t blockSize,
                  std::size_t vectorSize) {
    room.RestoreState(state);
    room.Configure(static_cast<float>(samplerate), blockSize, blockSize % vectorSize == 0 ? vectorSize : 0);
    room.Settle();
    return room;
}

}  // namespace

Player::Player(Lume::RoomState const& state, int newSamplerate, std::size_t blockSize, std::size_t vectorSize,
               SceneTrack const& track, std::size_t from, double newFromSeconds)
    : room(state.numSources, state.numSpeakers, state.numInternals, Lume::FindRoomFormat(state.format)),
      sourceLevels(state.numSources),
      outputLevels(state.numSpeakers),
      scene(track, from, Begin(room, state, newSamplerate, blockSize, vectorSize)),
      samplerate(newSamplerate),
      fromSeconds(newFromSeconds) {}

double Player::Seconds() const noexcept {
    return fromSeconds + static_cast<double>(frames.load(std::memory_order_relaxed)) / samplerate;
}

void Player::Process(float* const* outputs, float const* const* inputs, std::size_t numSamples) noexcept {
    const auto begin = std::chrono::steady_clock::now();
    queue.Deliver(room);
    std::array<float const*, orvandsp::MaxNumChannels> in;
    std::array<float*, orvandsp::MaxNumChannels> out;
    std::uint64_t at = frames.load(std::memory_order_relaxed);
    // Vector by vector, so that what the scene has comes in time.
    for (std::size_t done = 0; done < numSamples;) {
        const std::size_t step = std::min(room.VectorSize(), numSamples - done);
        at += step;
        // Of the frames' times, the one between two frames: rounding leaves events where they are.
        scene.Advance(room, fromSeconds + (static_cast<double>(at) - 0.5) / samplerate);
        for (std::size_t i = 0; i < room.NumSources(); ++i) in[i] = inputs[i] + done;
        for (std::size_t i = 0; i < room.NumSpeakers(); ++i) out[i] = outputs[i] + done;
        sourceLevels.Add(in.data(), step);
        room.Process(out.data(), in.data(), step);
        outputLevels.Add(out.data(), step);
        done += step;
    }
    frames.store(at, std::memory_order_relaxed);
    numBad.store(room.NumBadInputs() + room.NumBadOutputs(), std::memory_order_relaxed);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    const auto part = static_cast<float>(took.count() * samplerate / static_cast<double>(numSamples));
    if (part > load.load(std::memory_order_relaxed)) load.store(part, std::memory_order_relaxed);
}

}  // namespace live
