#include "orvanverb-live/room/player.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

#include "orvanverb-live/room/desk.h"
#include "orvanverb/room/room_setup.h"
#include "support/allocation_count.h"
#include "support/lock_count.h"

namespace {

constexpr unsigned int numSources = 64;
constexpr std::size_t block = 64;

}  // namespace

// Red if the audio thread ever waits for those who move sources, allocates, or doesn't get what they said last: 64
// sources, each moved a hundred times a second, in blocks of 64 samples.
TEST(Player, NeverWaitsForTheDesk) {
    const program::Options options;
    program::RoomSetup setup(options, numSources, 48000);
    live::Desk desk(setup.MakeRoom(), setup.Ears(), setup.VectorSize(), {});
    live::Player& player = desk.Attach(48000, block);
    std::atomic<bool> ends = false;
    Lume::CartesianVector last;
    std::thread mover([&] {
        for (int round = 0; !ends; ++round) {
            for (unsigned int i = 0; i < numSources; ++i) {
                const float angle = 0.01f * static_cast<float>(round) + static_cast<float>(i);
                last = {std::sin(angle), std::cos(angle), 0.1f * std::sin(angle)};
                desk.PlaceSource(i, last);
            }
            if (round % 10 == 0) desk.SetGain(static_cast<unsigned int>(round / 10) % numSources, -6.0f);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });
    std::vector<float> input(block, 0.01f);
    std::vector<std::vector<float>> sound(desk.NumOutputs(), std::vector<float>(block));
    const std::vector<float const*> inputs(numSources, input.data());
    std::vector<float*> outputs;
    outputs.reserve(sound.size());
    for (std::vector<float>& channel : sound) outputs.push_back(channel.data());
    const long allocations = AllocationCount(), locks = LockCount();
    for (int i = 0; i < 1500; ++i) player.Process(outputs.data(), inputs.data(), block);  // two seconds of sound
    EXPECT_EQ(AllocationCount(), allocations);
    EXPECT_EQ(LockCount(), locks);
    ends = true;
    mover.join();
    std::uint64_t tick = 0;
    for (int i = 0; i < 3; ++i) desk.WaitForTick(tick);  // what the queue had no place for is sent again
    player.Process(outputs.data(), inputs.data(), block);
    EXPECT_EQ(player.Room().SourcePosition(numSources - 1).x, last.x);
    EXPECT_EQ(player.Room().SourcePosition(numSources - 1).y, last.y);
    EXPECT_GT(std::abs(sound[0][0]), 0.0f);
    desk.Detach();
}
