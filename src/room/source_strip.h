#pragma once

#include <string>
#include <string_view>

namespace Lume {

/// What a source has of its own ahead of the room.
struct SourceStrip {
    static constexpr float silentDb = -120.0f;  ///< and below: nothing passes
    static constexpr float greatestDb = 20.0f;

    float gainDb = 0.0f;
    bool muted = false;
    std::string name;  ///< for people; Room::SetSourceName says what it may hold

    /// What samples are multiplied with.
    float Gain() const noexcept;

    bool operator==(SourceStrip const&) const = default;
};

/// The same for any gain [dB]; exactly 1 for 0 dB.
float LinearGain(float gainDb) noexcept;

/// What a name of a source may be, from any: control characters become blanks, none stand at its ends, and what is
/// beyond 64 bytes goes, in whole characters of UTF-8.
std::string LimitedName(std::string_view name);

}  // namespace Lume
