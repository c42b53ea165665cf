// Impulse responses by the dozen, as one makes them to train or to test with: rooms from a small grid of settings, on
// all processors, one WAV file each. Usage: batch [FOLDER]
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <orvan/room/room.h>

#include "wave_file.h"

namespace {

struct Setting {
    float decaySeconds, preDelayMs, distance;
};

bool Render(Setting const& setting, std::filesystem::path const& path) {
    constexpr unsigned int rate = 48000;
    constexpr std::size_t vectorSize = 64;
    Lume::Room room(1, 2);
    room.Configure(rate, vectorSize);
    room.Set(Lume::ControlIndex("tr0"), setting.decaySeconds);
    room.Set(Lume::ControlIndex("early_start"), setting.preDelayMs);
    room.PlaceSource(0, {0.0f, setting.distance, 0.0f});
    room.Settle();  // otherwise the first milliseconds are those of a room that is being set up

    const std::size_t numVectors = static_cast<std::size_t>(setting.decaySeconds * rate) / vectorSize + 1;
    std::vector<std::vector<float>> ears(2, std::vector<float>(numVectors * vectorSize));
    for (std::size_t v = 0; v < numVectors; ++v) {
        const float impulse[vectorSize] = {v == 0 ? 1.0f : 0.0f};
        float const* const inputs[] = {impulse};
        float* const outputs[] = {&ears[0][v * vectorSize], &ears[1][v * vectorSize]};
        room.Process(outputs, inputs, vectorSize);
    }
    return WriteWave(path.string(), ears, rate);
}

}  // namespace

int main(int argc, char** argv) {
    const std::filesystem::path folder = argc > 1 ? argv[1] : "responses";
    std::filesystem::create_directories(folder);
    std::vector<Setting> settings;
    for (const float decaySeconds : {0.4f, 1.2f, 3.0f})
        for (const float preDelayMs : {5.0f, 20.0f})
            for (const float distance : {1.0f, 4.0f}) settings.push_back({decaySeconds, preDelayMs, distance});

    // A room is used by one thread at a time, and rooms know nothing of each other.
    std::atomic<std::size_t> next{0}, numWritten{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < settings.size(); i = next++)
            if (Render(settings[i], folder / ("room" + std::to_string(i + 1) + ".wav"))) ++numWritten;
    };
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
    std::printf("%zu of %zu responses in %s\n", numWritten.load(), settings.size(), folder.c_str());
    return numWritten == settings.size() ? 0 : 1;
}
