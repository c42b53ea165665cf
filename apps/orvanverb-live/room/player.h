#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "orvanverb-live/room/level_meter.h"
#include "orvanverb-live/room/scene_track.h"
#include "room/room.h"
#include "room/room_queue.h"

namespace live {

/// What an audio thread runs: the room with its messages and its scene, and meters.
class Player {
public:
    /// Makes a room and lets its settings come to rest.
    /// @param samplerate  [Hz]
    /// @param vectorSize  samples of one run of the engine; the room chooses if the blocks don't hold whole ones
    /// @param from        where in the scene to begin
    /// @throws std::runtime_error if the state's ears can't be used
    Player(Lume::RoomState const& state, int samplerate, std::size_t blockSize, std::size_t vectorSize,
           SceneTrack const& scene, std::size_t from, double fromSeconds);

    /// Plays one block. Audio thread; real-time safe.
    void Process(float* const* outputs, float const* const* inputs, std::size_t numSamples) noexcept;

    Lume::Room& Room() noexcept { return room; }
    Lume::RoomQueue& Queue() noexcept { return queue; }
    /// Ahead of the sources' own gains.
    LevelMeter& SourceLevels() noexcept { return sourceLevels; }
    LevelMeter& OutputLevels() noexcept { return outputLevels; }
    /// @name Any thread
    /// @{
    std::size_t ScenePlayed() const noexcept { return scene.NumPlayed(); }
    double Seconds() const noexcept;  ///< of the performance
    std::uint64_t NumBadSamples() const noexcept { return numBad.load(std::memory_order_relaxed); }
    /// Part of a block's time that it took, the most since the last call.
    float TakeLoad() noexcept { return load.exchange(0.0f, std::memory_order_relaxed); }
    /// @}

private:
    Lume::Room room;
    Lume::RoomQueue queue;
    LevelMeter sourceLevels, outputLevels;
    ScenePlayer scene;
    double samplerate, fromSeconds;
    std::atomic<std::uint64_t> frames = 0, numBad = 0;
    std::atomic<float> load = 0.0f;
};

}  // namespace live
