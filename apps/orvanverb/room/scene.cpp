#include "orvanverb/room/scene.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "orvanverb/common/line_file.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"

namespace program {

Scene::Scene(std::string const& newPath) : path(newPath) {
    for (Line& line : ReadLines(path)) {
        const std::optional<float> seconds = ParseNumber(line.words.front());
        if (!seconds) {
            start.push_back({0.0, line.number, JoinWords(line.words)});
            continue;
        }
        if (*seconds < 0.0f)
            throw WorkError(At(path, line.number) + "a time of 0 or more is expected, not " + line.words.front());
        line.words.erase(line.words.begin());
        if (line.words.empty()) throw WorkError(At(path, line.number) + "a message is expected behind the time");
        timed.push_back({static_cast<double>(*seconds), line.number, JoinWords(line.words)});
    }
    std::stable_sort(timed.begin(), timed.end(), [](Event const& a, Event const& b) { return a.seconds < b.seconds; });
}

void Scene::Tell(RoomObject& room, Event const& event) const {
    try {
        room.Tell(event.message);
    } catch (std::invalid_argument const& error) {
        throw WorkError(At(path, event.line) + error.what());
    }
}

void Scene::Begin(RoomObject& room) const {
    for (Event const& event : start) Tell(room, event);
}

void Scene::Rehearse(RoomObject& room) const {
    for (Event const& event : timed) Tell(room, event);
}

std::vector<std::string> Scene::Play(RoomObject& room, std::uint64_t beforeFrame) {
    std::vector<std::string> said;
    for (; next < timed.size(); ++next) {
        Event const& event = timed[next];
        if (std::llround(event.seconds * room.Samplerate()) >= static_cast<long long>(beforeFrame)) break;
        try {
            room.Tell(event.message);
        } catch (std::invalid_argument const& error) {
            said.push_back(At(path, event.line) + error.what());
        }
        for (std::string const& remark : room.TakeRemarks()) said.push_back(At(path, event.line) + remark);
    }
    return said;
}

}  // namespace program
