#include "room/room_queue.h"

#include <bit>

#include "dsp/constants.h"

namespace Lume {

namespace {

// What messages are for: first the controls, then what every source and loudspeaker has, then what there is one of.
constexpr auto firstSource = static_cast<std::uint32_t>(roomControls.size());
constexpr std::uint32_t firstSpeaker = firstSource + orvandsp::MaxNumChannels;
constexpr std::uint32_t firstGain = firstSpeaker + orvandsp::MaxNumChannels;
constexpr std::uint32_t firstSourceMute = firstGain + orvandsp::MaxNumChannels;
constexpr std::uint32_t muting = firstSourceMute + orvandsp::MaxNumChannels;
constexpr std::uint32_t bypassing = muting + 1;
constexpr std::uint32_t clearing = muting + 2;
constexpr std::uint32_t turning = muting + 3;
constexpr std::uint32_t numTargets = muting + 4;

}  // namespace

RoomQueue::RoomQueue(std::size_t capacity)
    : messages(std::bit_ceil(capacity)), mask(messages.size() - 1), last(numTargets, 0) {}

RoomQueue::~RoomQueue() {
    delete earsSent.load();
    delete earsUsed.load();
}

bool RoomQueue::Send(std::uint32_t target, CartesianVector const& value) noexcept {
    const std::size_t place = written.load(std::memory_order_relaxed);
    if (target >= numTargets || place - read.load(std::memory_order_acquire) == messages.size()) {
        numLost.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    messages[place & mask] = {target, value};
    written.store(place + 1, std::memory_order_release);
    return true;
}

bool RoomQueue::Set(std::size_t control, float value) noexcept {
    return control < firstSource && Send(static_cast<std::uint32_t>(control), {value, 0.0f, 0.0f});
}

bool RoomQueue::PlaceSource(unsigned int source, CartesianVector const& position) noexcept {
    return source < orvandsp::MaxNumChannels && Send(firstSource + source, position);
}

bool RoomQueue::PlaceSpeaker(unsigned int speaker, CartesianVector const& position) noexcept {
    return speaker < orvandsp::MaxNumChannels && Send(firstSpeaker + speaker, position);
}

bool RoomQueue::SetSourceGain(unsigned int source, float gainDb) noexcept {
    return source < orvandsp::MaxNumChannels && Send(firstGain + source, {gainDb, 0.0f, 0.0f});
}

bool RoomQueue::SetSourceMuted(unsigned int source, bool muted) noexcept {
    return source < orvandsp::MaxNumChannels && Send(firstSourceMute + source, {muted ? 1.0f : 0.0f, 0.0f, 0.0f});
}

bool RoomQueue::SetMuted(bool muted) noexcept {
    return Send(muting, {muted ? 1.0f : 0.0f, 0.0f, 0.0f});
}

bool RoomQueue::SetBypassed(bool bypassed) noexcept {
    return Send(bypassing, {bypassed ? 1.0f : 0.0f, 0.0f, 0.0f});
}

bool RoomQueue::SetOrientation(Orientation const& orientation) noexcept {
    return Send(turning, {orientation.yaw, orientation.pitch, orientation.roll});
}

bool RoomQueue::Clear() noexcept {
    return Send(clearing, {});
}

void RoomQueue::SendEars(Ears ears) {
    delete earsUsed.exchange(nullptr);
    delete earsSent.exchange(new Ears(std::move(ears)));
}

void RoomQueue::Deliver(Room& room) {
    const std::size_t begin = read.load(std::memory_order_relaxed);
    const std::size_t end = written.load(std::memory_order_acquire);
    for (std::size_t i = begin; i != end; ++i) last[messages[i & mask].target] = i;
    for (std::size_t i = begin; i != end; ++i)
        if (last[messages[i & mask].target] == i) Apply(room, messages[i & mask]);
    read.store(end, std::memory_order_release);
    DeliverEars(room);
}

void RoomQueue::DeliverEars(Room& room) {
    // Ears that go out of use wait for the writer, who comes with the next pair: one place is enough.
    if (earsSent.load(std::memory_order_relaxed) == nullptr || earsUsed.load(std::memory_order_relaxed) != nullptr)
        return;
    if (Ears* const ears = earsSent.exchange(nullptr)) {
        room.TakeEars(*ears);
        earsUsed.store(ears);
    }
}

void RoomQueue::Apply(Room& room, Message const& message) {
    const std::uint32_t target = message.target;
    const bool on = message.value.x != 0.0f;
    if (target < firstSource)
        room.Set(target, message.value.x);
    else if (target < firstSpeaker)
        room.PlaceSource(target - firstSource, message.value);
    else if (target < firstGain)
        room.PlaceSpeaker(target - firstSpeaker, message.value);
    else if (target < firstSourceMute)
        room.SetSourceGain(target - firstGain, message.value.x);
    else if (target < muting)
        room.SetSourceMuted(target - firstSourceMute, on);
    else if (target == muting)
        room.SetMuted(on);
    else if (target == bypassing)
        room.SetBypassed(on);
    else if (target == turning)
        room.SetOrientation({message.value.x, message.value.y, message.value.z});
    else
        room.Clear();
}

}  // namespace Lume
