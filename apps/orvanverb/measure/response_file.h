#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "measure/room_measurement.h"

namespace program {

/// An impulse response in memory.
struct ResponseFile {
    std::string path;
    double samplerate = 0.0;                   // [Hz]
    std::vector<std::vector<float>> channels;  // planar, of equal length

    std::vector<std::span<float const>> Spans() const { return {channels.begin(), channels.end()}; }
};

/// Reads a sound file, or one channel of it.
/// @param channel  counted from 1
/// @throws WorkError that names the file; also for more than what an impulse response may reasonably hold
ResponseFile ReadResponse(std::string const& path, std::optional<unsigned int> channel = std::nullopt);

}  // namespace program
