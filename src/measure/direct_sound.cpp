#include "measure/direct_sound.h"

#include <algorithm>
#include <cmath>

namespace orvanmeasure {

std::optional<DirectSound> FindDirectSound(Channels response, double sampleRate) {
    constexpr double directSeconds = 0.0025;
    float peak = 0.0f;
    for (std::span<float const> channel : response)
        for (const float value : channel) peak = std::max(peak, std::abs(value));
    if (peak == 0.0f) return std::nullopt;

    std::size_t first = response[0].size();
    for (std::span<float const> channel : response) {
        const auto rises = [&](float value) { return std::abs(value) >= 0.1f * peak; };
        const auto at = std::find_if(channel.begin(), channel.end(), rises);
        first = std::min(first, static_cast<std::size_t>(at - channel.begin()));
    }
    const std::size_t end = first + static_cast<std::size_t>(directSeconds * sampleRate);
    double direct = 0.0, rest = 0.0;
    for (std::span<float const> channel : response)
        for (std::size_t n = 0; n < channel.size(); ++n) {
            const auto value = static_cast<double>(channel[n]);
            (n < end ? direct : rest) += value * value;
        }
    return DirectSound{first, 10.0 * std::log10(direct / rest)};
}

}  // namespace orvanmeasure
