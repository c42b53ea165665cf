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
    // Thirty years: what counts samples or steps on the way to it stays within its numbers.
    if (*seconds > 1e9) throw std::invalid_argument("a time of 1e9 s or less is expected, not " + word);
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

std::string Scene::Message(Event const& event, double at) const {
    std::string message = messages.substr(event.message, event.length);
    if (event.numGlides == 0) return message;
    std::vector<std::string> words = SplitWords(message);
    for (std::size_t i = 0; i < event.numGlides; ++i) {
        auto const& [word, from, to] = glides[event.firstGlide + i];
        words[word] =
            NumberText(static_cast<float>(from + (to - from) * (at - event.seconds) / (event.end - event.seconds)));
    }
    return JoinWords(words);
}

Scene::Scene(std::string const& newPath, std::vector<Remark>* faults)
    : path(newPath), folder(std::filesystem::path(newPath).parent_path()) {
    ForEachLine(path, [&](Line&& line) {
        const int number = line.number;
        try {
            Add(std::move(line));
        } catch (std::invalid_argument const& error) {
            if (faults == nullptr) throw WorkError(At(path, number) + error.what());
            if (faults->size() < mostRemarks) faults->push_back({number, At(path, number) + error.what()});
        }
    });
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
    event.firstGlide = static_cast<std::uint32_t>(glides.size());
    for (auto arrow = std::find_if(words.begin(), words.end(), IsArrow); arrow != words.end();
         arrow = std::find_if(arrow, words.end(), IsArrow)) {
        const auto index = static_cast<std::size_t>(arrow - words.begin());
        const double from = RequireNumber(words, index - 1);  // before the first word there is none, either
        double to = RequireNumber(words, index + 1);
        if (*arrow == "~>") to = from + std::remainder(to - from, 360.0);
        glides.push_back({index - 1, from, to});
        ++event.numGlides;
        arrow = words.erase(arrow, arrow + 2);
    }
    if ((event.numGlides == 0) == (event.end > event.seconds))
        throw std::invalid_argument(event.numGlides == 0 ? "between two times there must be a movement, as in 0 -> 90"
                                                         : "a movement needs two times, as in 0..16");
    const std::string message = JoinWords(words);
    event.message = messages.size();
    event.length = static_cast<std::uint32_t>(message.size());
    messages += message;
    if (hasTime) queue.push({event.seconds, static_cast<std::uint32_t>(timed.size()), 0});
    (hasTime ? timed : start).push_back(event);
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
        for (Event const& event : *events) {
            if (remarks.size() >= mostRemarks) return remarks;
            if (hear(event, event.seconds) && event.end > event.seconds) hear(event, event.end);
        }
    return remarks;
}

std::vector<std::string> Scene::Tell(Listener const& listener, Event const& event, double at) const {
    std::vector<std::string> lines;
    try {
        for (std::string const& line : listener(Message(event, at), folder))
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

std::vector<std::string> Scene::Play(Listener const& listener, double samplerate, std::uint64_t beforeFrame) {
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

std::size_t Scene::NumMovements() const {
    return static_cast<std::size_t>(
        std::count_if(timed.begin(), timed.end(), [](Event const& event) { return event.numGlides > 0; }));
}

unsigned int Scene::HighestSource() const {
    unsigned int highest = 0;
    for (auto const* const events : {&start, &timed})
        for (Event const& event : *events) {
            const std::string_view message = std::string_view(messages).substr(event.message, event.length);
            if (!message.starts_with("source ")) continue;
            const std::string_view number = message.substr(std::string_view("source ").size());
            highest = std::max(highest, ParseCount(number.substr(0, number.find(' '))).value_or(0));
        }
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
