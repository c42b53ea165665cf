#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <queue>
#include <string>
#include <string_view>
#include <vector>

#include "orvanverb/common/line_file.h"

namespace program {

/// What happens while a recording plays: messages, each with the time at which it is due, and movements.
///
///     # seconds or m:s, then a message as the object takes it
///     source 1 ade -90 3 0              no time: before the first sample
///     0.5 source 1 azim -60
///     1:02.25 reverb tr0 4
///     4 hrtf my ears.hrtf               a file beside the scene
///     0..16 source 1 azim 0 -> 360      a movement: the number goes evenly from one value to the other
///     20..24 source 1 azim 170 ~> -170  the same for an angle, by the shorter way around the circle: over 180
class Scene {
public:
    /// Whoever the messages are for. Throws std::invalid_argument for one that is wrong.
    /// @param folder  of the scene
    /// @return lines to be shown
    using Listener =
        std::function<std::vector<std::string>(std::string_view message, std::filesystem::path const& folder)>;

    /// What was said of a line.
    struct Remark {
        int line;
        std::string text;  // names file and line
    };

    Scene() = default;
    /// @param faults  if given, takes what is wrong with lines, which are left out; else the first one is thrown
    /// @throws WorkError that names file and line: unreadable, a time that is none, a time without a message, half a
    /// movement
    explicit Scene(std::string const& newPath, std::vector<Remark>* faults = nullptr);

    /// Tells everything in one go, of movements both ends, and goes on after complaints.
    /// @return what the listener had to say, complaints or not, until that is more than anybody reads
    std::vector<Remark> Try(Listener const& listener) const;
    /// As many lines are shown; a file of nothing else would make many times its size of them.
    static constexpr std::size_t mostRemarks = 1000;

    /// Tells what has no time.
    /// @return lines to be shown
    /// @throws WorkError that names file and line, if the listener complains
    std::vector<std::string> Begin(Listener const& listener) const;

    /// Tells everything else in one go, to find out whether somebody would complain. Of movements both ends.
    /// @throws WorkError as Begin
    void Rehearse(Listener const& listener) const;

    /// Tells what is due before a sample, counted from the recording's first, and was not told yet. Complaints don't
    /// end a performance.
    /// @param samplerate  [Hz]
    /// @return lines to be shown
    std::vector<std::string> Play(Listener const& listener, double samplerate, std::uint64_t beforeFrame);

    /// Makes the time from one message of a movement to the next longer than the usual 20 ms [s], for those who look at
    /// a scene and don't play it.
    void Coarsen(double seconds) { stepSeconds = std::max(stepSeconds, seconds); }

    /// When the next of what has a time and wasn't told yet is due [s]; nothing behind the last one.
    std::optional<double> NextSeconds() const;
    /// Tells it, whenever that is. @throws WorkError as Begin
    std::vector<std::string> PlayNext(Listener const& listener);

    /// Lines with a time that have not happened yet, or not to their end.
    std::size_t NumPending() const noexcept { return queue.size(); }
    /// What to say of them at the end of a rendering; empty if everything has happened.
    std::string PendingRemark() const;
    /// Lines with a time.
    std::size_t NumTimed() const noexcept { return timed.size(); }
    /// Those in which something moves, and that have more than one message.
    std::size_t NumMovements() const;
    /// The greatest number of a source that a message "source" names; 0 if there is none.
    unsigned int HighestSource() const;
    /// When the last of them has happened [s].
    double EndSeconds() const noexcept;

private:
    /// A number of a message that moves.
    struct Glide {
        std::size_t word;
        double from, to;
    };

    /// Small: scenes that were recorded have millions.
    struct Event {
        double seconds = 0.0, end = 0.0;  // the same unless something moves
        std::size_t message = 0;          // where it begins among the messages
        std::uint32_t length = 0;
        std::uint32_t firstGlide = 0, numGlides = 0;
        int line = 0;
    };

    /// When an event is to be told next.
    struct Due {
        double seconds;
        std::uint32_t event, step;

        bool operator>(Due const& other) const noexcept {
            return seconds > other.seconds || (seconds == other.seconds && event > other.event);
        }
    };

    void Add(Line line);
    std::string Message(Event const& event, double at) const;
    std::vector<std::string> Tell(Listener const& listener, Event const& event, double at) const;

    std::string path;
    std::filesystem::path folder;
    std::string messages;
    // None of them grows by copies, which for large scenes would need room for two.
    std::deque<Event> start, timed;
    std::deque<Glide> glides;
    std::priority_queue<Due, std::deque<Due>, std::greater<>> queue;  // as the file has them where times are equal
    double stepSeconds = 0.02;
};

}  // namespace program
