#include "orvanverb/room/scene.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <utility>

#include "orvanverb/common/line_file.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"

namespace program {

Scene::Scene(std::string const& newPath) : path(newPath), folder(std::filesystem::path(newPath).parent_path()) {
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

std::vector<std::string> Scene::Tell(Listener const& listener, Event const& event) const {
    std::vector<std::string> lines;
    try {
        for (std::string const& line : listener(event.message, folder)) lines.push_back(At(path, event.line) + line);
    } catch (std::invalid_argument const& error) {
        throw WorkError(At(path, event.line) + error.what());
    }
    return lines;
}

std::vector<std::string> Scene::Begin(Listener const& listener) const {
    std::vector<std::string> lines;
    for (Event const& event : start)
        for (std::string& line : Tell(listener, event)) lines.push_back(std::move(line));
    return lines;
}

void Scene::Rehearse(Listener const& listener) const {
    for (Event const& event : timed) Tell(listener, event);
}

std::optional<double> Scene::NextSeconds() const {
    if (next == timed.size()) return std::nullopt;
    return timed[next].seconds;
}

std::vector<std::string> Scene::Play(Listener const& listener, int samplerate, std::uint64_t beforeFrame) {
    std::vector<std::string> lines;
    for (; next < timed.size(); ++next) {
        Event const& event = timed[next];
        if (std::llround(event.seconds * samplerate) >= static_cast<long long>(beforeFrame)) break;
        try {
            for (std::string& line : Tell(listener, event)) lines.push_back(std::move(line));
        } catch (WorkError const& error) {
            lines.emplace_back(error.what());
        }
    }
    return lines;
}

}  // namespace program
