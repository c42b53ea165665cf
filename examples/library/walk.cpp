// Walks once around the listener in four seconds, clicking, and writes what headphones play: walk.wav.
#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

#include <orvan/room/room.h>

#include "wave_file.h"

int main() {
    constexpr unsigned int rate = 48000, blockSize = 64, numBlocks = 4 * rate / blockSize;
    Lume::Room room(1, 2);  // one source; two outputs are headphones
    room.Configure(rate, blockSize);
    room.Set(Lume::ControlIndex("tr0"), 1.4f);  // every control by its name: docs/controls.md

    std::vector<std::vector<float>> ears(2, std::vector<float>(numBlocks * blockSize));
    for (unsigned int block = 0; block < numBlocks; ++block) {
        // From block to block is often enough: the room slides to where the source is told to be.
        const float turn = 2.0f * std::numbers::pi_v<float> * static_cast<float>(block) / numBlocks;
        room.PlaceSource(0, {1.5f * std::sin(turn), 1.5f * std::cos(turn), 0.0f});  // clockwise, from ahead
        float click[blockSize] = {};
        if (block % 150 == 100) click[0] = 0.5f;  // five a second
        float const* const inputs[] = {click};
        float* const outputs[] = {&ears[0][block * blockSize], &ears[1][block * blockSize]};
        room.Process(outputs, inputs, blockSize);
    }
    std::puts(WriteWave("walk.wav", ears, rate) ? "walk.wav" : "walk.wav can't be written");
}
