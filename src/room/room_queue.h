#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "room/ears.h"
#include "room/room.h"

namespace Lume {

/// Carries messages to a running room from one other thread: one writer, one reader. A host with several writing
/// threads gives each a queue of its own.
///
///     queue.Set(Lume::ControlIndex("tr0"), 2.5f);      // on the writer's thread
///
///     queue.Deliver(room);                             // on the audio thread, before each block
///     room.Process(outputs, inputs, numSamples);
///
/// Neither side ever waits for the other, locks or allocates. Of several messages for one control or place that are
/// delivered at once, the last one counts; messages for different ones keep their order.
class RoomQueue {
public:
    /// Makes room. Allocates.
    /// @param capacity    messages that can wait; rounded up to a power of two
    explicit RoomQueue(std::size_t capacity = 1024);
    ~RoomQueue();
    RoomQueue(RoomQueue const&) = delete;
    RoomQueue& operator=(RoomQueue const&) = delete;

    /// @name On the writer's thread
    /// What the operations of Room do, with its next block.
    /// @return false if the queue is full: the message is lost, and counted
    /// @{
    bool Set(std::size_t control, float value) noexcept;
    bool PlaceSource(unsigned int source, CartesianVector const& position) noexcept;
    bool PlaceSpeaker(unsigned int speaker, CartesianVector const& position) noexcept;
    bool SetSourceGain(unsigned int source, float gainDb) noexcept;
    bool SetSourceMuted(unsigned int source, bool muted) noexcept;
    bool SetOrientation(Orientation const& orientation) noexcept;
    bool SetMuted(bool muted) noexcept;
    bool SetBypassed(bool bypassed) noexcept;
    bool Clear() noexcept;
    /// @}

    /// Sends ears from Room::PrepareEars; they replace such as weren't taken yet. Also deletes those that the room has
    /// given back, so that the audio thread never frees memory. Writer's thread; allocates.
    void SendEars(Ears ears);

    /// Messages that found the queue full, in all. Any thread.
    std::uint64_t NumLost() const noexcept { return numLost.load(std::memory_order_relaxed); }

    /// Hands everything that waits to the room. Audio thread, between two blocks; real-time safe.
    void Deliver(Room& room);

private:
    struct Message {
        std::uint32_t target = 0;
        CartesianVector value;  // a control's in x
    };

    bool Send(std::uint32_t target, CartesianVector const& value) noexcept;
    void DeliverEars(Room& room);
    static void Apply(Room& room, Message const& message);

    std::vector<Message> messages;
    std::size_t mask;
    // Counts that only grow: what was written, and what was read. Each on its own line of the cache.
    alignas(64) std::atomic<std::size_t> written = 0;
    alignas(64) std::atomic<std::size_t> read = 0;
    std::atomic<std::uint64_t> numLost = 0;
    std::atomic<Ears*> earsSent = nullptr, earsUsed = nullptr;
    std::vector<std::size_t> last;  // the reader's: where the last message for each target stands
};

}  // namespace Lume
