#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace program {

/// How long a rendering goes on behind the end of its input: a fixed time, or until the room has died away.
///
/// "Died away" is a whole second in which no sample came within 60 dB of the loudest one of the rendering. The second
/// is longer than the silence that a late start of the reverberation may leave, and lets the end fade further. After
/// maxAutoSeconds it's over in any case: an infinite room never dies.
class Tail {
public:
    static constexpr double maxAutoSeconds = 120.0;
    static constexpr double quietSeconds = 1.0;
    static constexpr float quietGain = 0.001f;  // -60 dB

    /// @param seconds  fixed length; none: until the room has died away
    explicit Tail(std::optional<double> seconds) : fixedSeconds(seconds) {}

    /// Reads SECONDS or "auto".
    /// @throws UsageError for anything else
    static Tail Parse(std::string_view text);

    bool IsAuto() const noexcept { return !fixedSeconds; }

    /// Frames of the tail if they are fixed, the most that there can be if not.
    std::uint64_t MaxFrames(int samplerate) const;

    /// Takes the levels of the next block of the tail.
    /// @param blockPeak, loudest  largest sample of the block, and of the whole rendering
    /// @return true when the room has died away (never for a fixed tail)
    bool HasDiedAway(float blockPeak, float loudest, std::uint64_t frames, int samplerate);

private:
    std::optional<double> fixedSeconds;
    std::uint64_t quietFrames = 0;
};

}  // namespace program
