#pragma once

#include <vector>

#include "room/room.h"
#include "support/signals.h"

/// What a room plays: one array per loudspeaker.
using Recording = std::vector<std::vector<float>>;

/// Sends noise, another for each source, and silence behind it through a room in blocks of its size.
inline Recording Play(Lume::Room& room, std::size_t numNoise, std::size_t numSamples) {
    const std::size_t block = room.BlockSize();
    std::vector<std::vector<float>> in;
    for (unsigned int i = 0; i < room.NumSources(); ++i) {
        in.push_back(MakeNoise(i + 1, numNoise, 0.5f));
        in.back().resize(numSamples + block, 0.0f);
    }
    Recording out(room.NumSpeakers(), std::vector<float>(numSamples + block));
    std::vector<float const*> inputs(in.size());
    std::vector<float*> outputs(out.size());
    for (std::size_t begin = 0; begin < numSamples; begin += block) {
        for (std::size_t i = 0; i < in.size(); ++i) inputs[i] = in[i].data() + begin;
        for (std::size_t i = 0; i < out.size(); ++i) outputs[i] = out[i].data() + begin;
        room.Process(outputs.data(), inputs.data(), block);
    }
    for (auto& channel : out) channel.resize(numSamples);
    return out;
}
