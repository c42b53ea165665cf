#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "geometry/orientation.h"

namespace program {

/// A place as the listener sees it, the convention of everything that a user types.
struct ListenerPosition {
    float azimuthDeg = 0.0f;    // 0 ahead, +90 right, -90 left, 180 behind: clockwise seen from above
    float elevationDeg = 0.0f;  // 0 at the height of the ears, +90 above
    float distanceM = 1.0f;     // from the centre of the head
};

/// Reads AZIMUTH [ELEVATION [DISTANCE]].
/// @throws std::invalid_argument that says what is wrong: a word that isn't a number, an angle beyond ±360 (azimuth) or
///         ±90 degrees (elevation), a distance outside 0 to 1000 m, or none or more than three words
ListenerPosition ParseListenerPosition(std::span<std::string const> words);

/// Reads YAW [PITCH [ROLL]] [degrees]: to the right, up, and the right ear down.
/// @throws std::invalid_argument that says what is wrong: a word that isn't a number, an angle beyond ±360 degrees, or
///         none or more than three words
Lume::Orientation ParseOrientation(std::span<std::string const> words);

/// The same of a message "orientation YAW [PITCH [ROLL]]"; nothing if it is another one.
std::optional<Lume::Orientation> ParseOrientationMessage(std::string_view message);

}  // namespace program
