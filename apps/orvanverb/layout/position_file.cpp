#include "orvanverb/layout/position_file.h"

#include <stdexcept>

#include "orvanverb/common/line_file.h"

namespace program {

std::vector<ListenerPosition> ReadPositionFile(std::string const& path, std::size_t atMost) {
    std::vector<ListenerPosition> positions;
    ReadLineFile(path, [&](std::span<std::string const> words) {
        const ListenerPosition position = ParseListenerPosition(words);
        if (position.distanceM == 0.0f) throw std::invalid_argument("a loudspeaker needs a distance above 0 m");
        if (positions.size() == atMost)
            throw std::invalid_argument("more than " + std::to_string(atMost) + " loudspeakers");
        positions.push_back(position);
    });
    return positions;
}

}  // namespace program
