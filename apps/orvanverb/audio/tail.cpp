#include "orvanverb/audio/tail.h"

#include <cmath>
#include <string>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"

namespace program {

namespace {

constexpr float maxFixedSeconds = 36000.0f;

}  // namespace

Tail Tail::Parse(std::string_view text) {
    if (text == "auto") return Tail(std::nullopt);
    const std::optional<float> seconds = ParseNumber(text);
    if (!seconds || *seconds < 0.0f || *seconds > maxFixedSeconds)
        throw UsageError("--tail: '" + std::string(text) + "' is neither auto nor a time from 0 to " +
                         NumberText(maxFixedSeconds) + " seconds");
    return Tail(static_cast<double>(*seconds));
}

std::uint64_t Tail::MaxFrames(int samplerate) const {
    return static_cast<std::uint64_t>(std::llround(fixedSeconds.value_or(maxAutoSeconds) * samplerate));
}

bool Tail::HasDiedAway(float blockPeak, float loudest, std::uint64_t frames, int samplerate) {
    quietFrames = blockPeak <= loudest * quietGain ? quietFrames + frames : 0;
    return IsAuto() && static_cast<double>(quietFrames) >= quietSeconds * samplerate;
}

}  // namespace program
