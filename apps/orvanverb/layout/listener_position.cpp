#include "orvanverb/layout/listener_position.h"

#include <stdexcept>

#include "orvanverb/common/text.h"

namespace program {

namespace {

float InRange(std::string const& word, char const* what, float lowest, float highest, char const* unit) {
    const std::optional<float> value = ParseNumber(word);
    if (!value) throw std::invalid_argument(std::string(what) + " '" + word + "' is not a number");
    if (*value < lowest || *value > highest)
        throw std::invalid_argument(std::string(what) + " " + word + " is outside " + NumberText(lowest) + " to " +
                                    NumberText(highest) + " " + unit);
    return *value;
}

}  // namespace

ListenerPosition ParseListenerPosition(std::span<std::string const> words) {
    if (words.empty() || words.size() > 3)
        throw std::invalid_argument("expected AZIMUTH [ELEVATION [DISTANCE]], found " + std::to_string(words.size()) +
                                    " words");
    ListenerPosition position;
    position.azimuthDeg = InRange(words[0], "azimuth", -360.0f, 360.0f, "degrees");
    if (words.size() > 1) position.elevationDeg = InRange(words[1], "elevation", -90.0f, 90.0f, "degrees");
    if (words.size() > 2) position.distanceM = InRange(words[2], "distance", 0.0f, 1000.0f, "m");
    return position;
}

Lume::Orientation ParseOrientation(std::span<std::string const> words) {
    if (words.empty() || words.size() > 3)
        throw std::invalid_argument("expected YAW [PITCH [ROLL]], found " + std::to_string(words.size()) + " words");
    constexpr float turn = 360.0f;
    Lume::Orientation orientation;
    orientation.yaw = InRange(words[0], "yaw", -turn, turn, "degrees");
    if (words.size() > 1) orientation.pitch = InRange(words[1], "pitch", -turn, turn, "degrees");
    if (words.size() > 2) orientation.roll = InRange(words[2], "roll", -turn, turn, "degrees");
    return orientation;
}

std::optional<Lume::Orientation> ParseOrientationMessage(std::string_view message) {
    const std::vector<std::string> words = SplitWords(message);
    if (words.empty() || words.front() != "orientation") return std::nullopt;
    try {
        return ParseOrientation(std::span(words).subspan(1));
    } catch (std::invalid_argument const& error) {
        throw std::invalid_argument(std::string("orientation: ") + error.what());
    }
}

}  // namespace program
