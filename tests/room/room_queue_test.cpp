#include "room/room_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

#include "pan/set_file.h"
#include "room/room_rig.h"
#include "support/allocation_count.h"
#include "support/lock_count.h"
#include "support/temporary_file.h"

namespace {

using Lume::ControlIndex;

constexpr std::size_t tr0 = ControlIndex("tr0"), gain = ControlIndex("gain");

}  // namespace

// Red if a message acts before it is delivered, if an earlier one for the same control wins, or if the order of sources
// is lost: the early reflections follow the one that was placed last.
TEST(RoomQueue, TheLastMessageForAControlCounts) {
    Lume::Room room(2, 4), wanted(2, 4);
    Lume::RoomQueue queue(64);
    queue.Set(tr0, 1.0f);
    queue.PlaceSource(0, {5.0f, 0.0f, 0.0f});
    queue.Set(gain, -6.0f);
    queue.PlaceSource(1, {1.0f, 1.0f, 0.0f});
    queue.Set(tr0, 3.0f);
    queue.PlaceSource(0, {0.0f, -2.0f, 0.0f});
    queue.SetSourceGain(1, -3.0f);
    queue.SetSourceMuted(1, true);
    queue.PlaceSpeaker(3, {0.5f, 1.5f, 0.0f});
    queue.SetOrientation({10.0f, 20.0f, -30.0f});
    for (const unsigned int source : {64u, 1000u})
        EXPECT_FALSE(queue.PlaceSource(source, {}) || queue.PlaceSpeaker(source, {}) ||
                     queue.SetSourceGain(source, 0.0f) || queue.SetSourceMuted(source, true) ||
                     queue.Set(Lume::roomControls.size() + source, 0.0f));
    EXPECT_EQ(room.Get(tr0), wanted.Get(tr0));
    const long allocations = AllocationCount(), locks = LockCount();
    queue.Deliver(room);
    EXPECT_EQ(AllocationCount(), allocations);
    EXPECT_EQ(LockCount(), locks);
    EXPECT_EQ(room.Get(tr0), 3.0f);
    EXPECT_EQ(room.Get(gain), -6.0f);
    EXPECT_EQ(room.SourcePosition(0).y, -2.0f);
    EXPECT_EQ(room.SourcePosition(1).x, 1.0f);
    EXPECT_EQ(room.SpeakerPositions()[3].y, 1.5f);
    EXPECT_EQ(room.GetOrientation(), (Lume::Orientation{10.0f, 20.0f, -30.0f}));
    EXPECT_EQ(room.SourceStrips()[1], (Lume::SourceStrip{-3.0f, true, ""}));
    EXPECT_EQ(room.SourceStrips()[0], (Lume::SourceStrip{0.0f, false, ""}));
    room.Set(tr0, 2.0f);
    queue.Deliver(room);
    EXPECT_EQ(room.Get(tr0), 2.0f) << "delivered twice";
    for (const bool on : {true, false}) {
        queue.SetMuted(on);
        queue.SetBypassed(!on);
        queue.Deliver(room);
        EXPECT_EQ(room.SaveState().mute, on);
        EXPECT_EQ(room.SaveState().bypass, !on);
    }
    room.Configure(48000.0f, 64);
    Play(room, 9600, 9600);
    queue.Clear();
    queue.Deliver(room);
    EXPECT_EQ(LevelDb(Play(room, 0, 9600)[0]), -std::numeric_limits<double>::infinity());
}

// Red if a full queue blocks, overwrites what waits, or says nothing; or if it doesn't take any more once it is read.
TEST(RoomQueue, SaysWhatDoesNotFit) {
    Lume::Room room(1, 2);
    Lume::RoomQueue queue(4);
    for (int i = 1; i <= 6; ++i) EXPECT_EQ(queue.Set(tr0, static_cast<float>(i)), i <= 4);
    EXPECT_EQ(queue.NumLost(), 2u);
    queue.Deliver(room);
    EXPECT_EQ(room.Get(tr0), 4.0f);
    EXPECT_TRUE(queue.Set(tr0, 7.0f));
    queue.Deliver(room);
    EXPECT_EQ(room.Get(tr0), 7.0f);
}

// A control thread sends 10,000 messages a second, and now and then ears, while audio runs. Red (under the thread
// sanitizer) if the two share anything without order, and (everywhere) if a message is lost or the sound isn't finite.
TEST(RoomQueue, CarriesTenThousandMessagesASecondIntoARunningRoom) {
    const TemporaryFile file(".hrtf", FlatSetFile());
    Lume::Room room(2, 2);
    room.Configure(48000.0f, 64);
    Lume::RoomQueue queue(4096);
    std::atomic<bool> sent = false;
    std::thread control([&] {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i <= 10000; ++i) {
            const float part = static_cast<float>(i) / 10000.0f;
            switch (i % 4) {
                case 0:
                    queue.Set(tr0, 0.1f + 9.0f * part);
                    break;
                case 1:
                    queue.Set(ControlIndex("direct_gain_low"), 30.0f * part);
                    break;
                case 2:
                    queue.PlaceSource(1, {2.0f * part, 1.0f, 0.0f});
                    break;
                default:
                    queue.SetMuted(i % 3 == 0);
                    break;
            }
            if (i % 1000 == 0) queue.SendEars(room.PrepareEars(file.name));
            if (i % 100 == 0) std::this_thread::sleep_until(begin + std::chrono::microseconds(100 * i));
        }
        sent = true;
    });
    std::vector<float> block(64);
    float* const arrays[] = {block.data(), block.data()};
    bool finite = true;
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; !sent; ++i) {
        for (std::size_t k = 0; k < block.size(); ++k) block[k] = k % 7 == 0 ? 0.5f : 0.0f;
        queue.Deliver(room);
        room.Process(arrays, arrays, 64);
        for (const float sample : block) finite = finite && std::isfinite(sample);
        std::this_thread::sleep_until(begin + std::chrono::microseconds(1333) * i);
    }
    control.join();
    queue.Deliver(room);
    EXPECT_TRUE(finite);
    EXPECT_EQ(queue.NumLost(), 0u);
    EXPECT_EQ(room.Get(tr0), 9.1f);
    EXPECT_EQ(room.NumBadOutputs(), 0u);
    EXPECT_EQ(room.CurrentEars().path, file.name);
}
