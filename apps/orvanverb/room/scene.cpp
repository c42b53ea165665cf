#include "orvanverb/room/scene.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <utility>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"

namespace program {

namespace {

/// A time as people write it: 12.5, 1:30, 1:02:30.5.
std::optional<double> ParseTime(std::string_view word) {
    double seconds = 0.0;
    for (int part = 1; part <= 3; ++part) {
        const std::size_t colon = word.find(':');
        const bool last = colon == std::string_view::npos;
        const std::optional<double> value = ParseDouble(word.substr(0, colon));
        const bool whole = last || ParseCount(word.substr(0, colon));
        if (!value || !whole || (part > 1 && !(*value >= 0.0 && *value < 60.0))) return std::nullopt;
        seconds = 60.0 * seconds + *value;
        if (last) return seconds;
        word.remove_prefix(colon + 1);
    }
    return std::nullopt;
}

bool BeginsLikeATime(std::string const& word) {
    return word.find_first_of("0123456789.") == (word.find_first_of("+-") == 0 ? 1 : 0);
}

double RequireTime(std::string const& word) {
    const std::optional<double> seconds = ParseTime(word);
    if (!seconds)
        throw std::invalid_argument("'" + word + "' is no time: seconds or m:s are expected, or two with .. between");
    if (*seconds < 0.0) throw std::invalid_argument("a time of 0 or more is expected, not " + word);
    return *seconds;
}

bool IsArrow(std::string const& word) {
    return word == "->" || word == "~>";
}

double RequireNumber(std::vector<std::string> const& words, std::size_t index) {
    const std::optional<double> number = index < words.size() ? ParseDouble(words[index]) : std::nullopt;
    if (!number) throw std::invalid_argument("a movement goes from a number to a number, as in 0 -> 90");
    return *number;
}

}  // namespace

std::string Scene::Event::Message(double at) const {
    std::vector<std::string> text = words;
    for (auto const& [word, from, to] : glides)
        text[word] = NumberText(static_cast<float>(from + (to - from) * (at - seconds) / (end - seconds)));
    return JoinWords(text);
}

Scene::Scene(std::string const& newPath, std::vector<Remark>* faults)
    : path(newPath), folder(std::filesystem::path(newPath).parent_path()) {
    for (Line& line : ReadLines(path)) {
        const int number = line.number;
        try {
            Add(std::move(line));
        } catch (std::invalid_argument const& error) {
            if (faults == nullptr) throw WorkError(At(path, number) + error.what());
            faults->push_back({number, At(path, number) + error.what()});
        }
    }
}

void Scene::Add(Line line) {
    Event event;
    event.line = line.number;
    std::vector<std::string>& words = line.words;
    const std::string first = words.front();
    const bool hasTime = BeginsLikeATime(first);
    if (hasTime) {
        const std::size_t dots = first.find("..");
        event.seconds = RequireTime(first.substr(0, dots));
        event.end = dots == std::string::npos ? event.seconds : RequireTime(first.substr(dots + 2));
        if (dots != std::string::npos && !(event.end > event.seconds))
            throw std::invalid_argument(first + ": the second time must be the later one");
        words.erase(words.begin());
        if (words.empty()) throw std::invalid_argument("a message is expected behind the time");
    }
    for (auto arrow = std::find_if(words.begin(), words.end(), IsArrow); arrow != words.end();
         arrow = std::find_if(arrow, words.end(), IsArrow)) {
        const auto index = static_cast<std::size_t>(arrow - words.begin());
        const double from = RequireNumber(words, index - 1);  // before the first word there is none, either
        double to = RequireNumber(words, index + 1);
        if (*arrow == "~>") to = from + std::remainder(to - from, 360.0);
        event.glides.push_back({index - 1, from, to});
        arrow = words.erase(arrow, arrow + 2);
    }
    if (event.glides.empty() == (event.end > event.seconds))
        throw std::invalid_argument(event.glides.empty() ? "between two times there must be a movement, as in 0 -> 90"
                                                         : "a movement needs two times, as in 0..16");
    event.words = std::move(words);
    if (hasTime) queue.push({event.seconds, timed.size(), 0});
    (hasTime ? timed : start).push_back(std::move(event));
}

std::vector<Scene::Remark> Scene::Try(Listener const& listener) const {
    std::vector<Remark> remarks;
    const auto hear = [&](Event const& event, double at) {
        try {
            for (std::string& line : Tell(listener, event, at)) remarks.push_back({event.line, std::move(line)});
            return true;
        } catch (WorkError const& error) {
            remarks.push_back({event.line, error.what()});
            return false;
        }
    };
    for (auto const* const events : {&start, &timed})
        for (Event const& event : *events)
            if (hear(event, event.seconds) && event.end > event.seconds) hear(event, event.end);
    return remarks;
}

std::vector<std::string> Scene::Tell(Listener const& listener, Event const& event, double at) const {
    std::vector<std::string> lines;
    try {
        for (std::string const& line : listener(event.Message(at), folder))
            lines.push_back(At(path, event.line) + line);
    } catch (std::invalid_argument const& error) {
        throw WorkError(At(path, event.line) + error.what());
    }
    return lines;
}

std::vector<std::string> Scene::Begin(Listener const& listener) const {
    std::vector<std::string> lines;
    for (Event const& event : start)
        for (std::string& line : Tell(listener, event, 0.0)) lines.push_back(std::move(line));
    return lines;
}

void Scene::Rehearse(Listener const& listener) const {
    std::vector<Event const*> inTime;
    for (Event const& event : timed) inTime.push_back(&event);
    std::stable_sort(inTime.begin(), inTime.end(), [](auto* a, auto* b) { return a->seconds < b->seconds; });
    for (Event const* const event : inTime) {
        Tell(listener, *event, event->seconds);
        if (event->end > event->seconds) Tell(listener, *event, event->end);
    }
}

std::optional<double> Scene::NextSeconds() const {
    if (queue.empty()) return std::nullopt;
    return queue.top().seconds;
}

std::vector<std::string> Scene::PlayNext(Listener const& listener) {
    const Due due = queue.top();
    queue.pop();
    Event const& event = timed[due.event];
    if (due.seconds < event.end) {
        const double next = event.seconds + static_cast<double>(due.step + 1) * stepSeconds;
        queue.push({next + 0.01 * stepSeconds < event.end ? next : event.end, due.event, due.step + 1});
    }
    return Tell(listener, event, due.seconds);
}

std::vector<std::string> Scene::Play(Listener const& listener, int samplerate, std::uint64_t beforeFrame) {
    std::vector<std::string> lines;
    while (!queue.empty() && std::llround(queue.top().seconds * samplerate) < static_cast<long long>(beforeFrame)) {
        try {
            for (std::string& line : PlayNext(listener)) lines.push_back(std::move(line));
        } catch (WorkError const& error) {
            lines.emplace_back(error.what());
        }
    }
    return lines;
}

unsigned int Scene::HighestSource() const {
    unsigned int highest = 0;
    for (auto const* const events : {&start, &timed})
        for (Event const& event : *events)
            if (event.words.size() > 1 && event.words[0] == "source")
                highest = std::max(highest, ParseCount(event.words[1]).value_or(0));
    return highest;
}

std::string Scene::PendingRemark() const {
    if (queue.empty()) return {};
    return path + ": " + (NumPending() == 1 ? "1 line is" : std::to_string(NumPending()) + " lines are") +
           " due behind the end, the last at " + FixedText(EndSeconds(), 2) + " s; a longer --tail reaches them";
}

double Scene::EndSeconds() const noexcept {
    double end = 0.0;
    for (Event const& event : timed) end = std::max(end, event.end);
    return end;
}

}  // namespace program
