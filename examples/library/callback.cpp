// How a room lives in an audio application: a device calls back on a thread of its own, which may never wait, and the
// rest of the program talks to the room through a queue. The device here is a thread that calls as fast as it can.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <thread>

#include <orvan/room/room.h>
#include <orvan/room/room_queue.h>

namespace {

struct Player {
    Lume::Room room{1, 2};
    Lume::RoomQueue queue;           // one writer: the control thread
    std::atomic<float> level{0.0f};  // what a meter shows
    std::atomic<long> numBlocks{0};

    /// The audio thread is here and nowhere else. No lock, no memory, no file.
    void Callback(float* const* outputs, float const* const* inputs, std::size_t numSamples) {
        queue.Deliver(room);
        room.Process(outputs, inputs, numSamples);
        float peak = 0.0f;
        for (std::size_t i = 0; i < numSamples; ++i) peak = std::max(peak, std::abs(outputs[0][i]));
        level.store(std::max(peak, 0.99f * level.load(std::memory_order_relaxed)), std::memory_order_relaxed);
        numBlocks.fetch_add(1, std::memory_order_relaxed);
    }
};

}  // namespace

int main() {
    constexpr std::size_t blockSize = 256;
    Player player;
    // Devices may ask for other lengths than they said; then Varying gives the same samples, a vector later.
    player.room.Configure(48000.0f, blockSize, 64, Lume::SteadyVectors::Blocks::Varying);

    std::atomic<bool> runs{true};
    std::thread device([&] {
        float in[blockSize] = {}, left[blockSize], right[blockSize];
        float const* const inputs[] = {in};
        float* const outputs[] = {left, right};
        for (unsigned int block = 0; runs.load(); ++block) {
            in[0] = block % 50 == 0 ? 1.0f : 0.0f;
            player.Callback(outputs, inputs, block % 7 == 0 ? blockSize / 2 : blockSize);
        }
    });

    // The control thread: a hand that turns knobs while the room sounds.
    long heard = 0;
    for (int step = 0; step < 100; ++step) {
        player.queue.Set(Lume::ControlIndex("tr0"), 0.5f + 0.03f * static_cast<float>(step));
        player.queue.PlaceSource(0, {std::sin(0.1f * static_cast<float>(step)), 1.0f, 0.0f});
        while (player.numBlocks.load() < 5L * (step + 1)) std::this_thread::yield();
        if (player.level.load() > 1e-4f) ++heard;
    }
    runs = false;
    device.join();
    player.queue.Deliver(player.room);  // what came behind the last block; nobody else has the room now
    std::printf("heard %ld of 100 times, %llu messages lost, decay %.2f s\n", heard,
                static_cast<unsigned long long>(player.queue.NumLost()),
                static_cast<double>(player.room.Get(Lume::ControlIndex("tr0"))));
}
