#pragma once

#include <optional>
#include <string>

namespace program {

/// What the command room knows: a room to be proposed, from a volume and decay times or from another room.
struct RoomOptions {
    enum class Form { Preset, Words, State, Json };

    std::optional<std::string> preset;  // the other room; then its size counts, otherwise the four behind it
    float size = 1.0f;                  // how many times as long, wide and high
    float volume = 0.0f;                // [m^3]
    float decaySeconds = 0.0f;          // T30 at 500 and 1000 Hz
    std::optional<float> lowSeconds;    // at 125 Hz; none: as in the middle
    std::optional<float> highSeconds;   // at 4 kHz
    float distance = 3.0f;              // of the source [m]
    Form form = Form::Preset;
    bool quiet = false;  // no report
};

}  // namespace program
