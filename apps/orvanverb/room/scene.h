#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace program {

/// What happens while a recording plays: messages, each with the time at which it is due.
///
///     # seconds, then a message as the object takes it
///     source 1 ade -90 3 0          no time: before the first sample
///     0.5 source 1 azim -60
///     2.25 reverb tr0 4
///     4 hrtf my ears.hrtf           a file beside the scene
class Scene {
public:
    /// Whoever the messages are for. Throws std::invalid_argument for one that is wrong.
    /// @param folder  of the scene
    /// @return lines to be shown
    using Listener =
        std::function<std::vector<std::string>(std::string_view message, std::filesystem::path const& folder)>;

    Scene() = default;
    /// @throws WorkError that names file and line: unreadable, a time that is none, a time without a message
    explicit Scene(std::string const& newPath);

    /// Tells what has no time.
    /// @return lines to be shown
    /// @throws WorkError that names file and line, if the listener complains
    std::vector<std::string> Begin(Listener const& listener) const;

    /// Tells everything else in one go, to find out whether somebody would complain.
    /// @throws WorkError as Begin
    void Rehearse(Listener const& listener) const;

    /// Tells what is due before a sample, counted from the recording's first, and was not told yet. Complaints don't
    /// end a performance.
    /// @param samplerate  [Hz]
    /// @return lines to be shown
    std::vector<std::string> Play(Listener const& listener, int samplerate, std::uint64_t beforeFrame);

    /// When the next of what has a time and wasn't told yet is due [s]; nothing behind the last one.
    std::optional<double> NextSeconds() const;
    /// Tells it, whenever that is. @throws WorkError as Begin
    std::vector<std::string> PlayNext(Listener const& listener) { return Tell(listener, timed.at(next++)); }

private:
    struct Event {
        double seconds;
        int line;
        std::string message;
    };

    std::vector<std::string> Tell(Listener const& listener, Event const& event) const;

    std::string path;
    std::filesystem::path folder;
    std::vector<Event> start, timed;  // timed: by their times, and in the order of the file where they are equal
    std::size_t next = 0;
};

}  // namespace program
