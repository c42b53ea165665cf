#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "patcher/console.h"
#include "room/room_state.h"

namespace plugin {

/// Makes a set of filters from measurements (SOFA) beside the host's thread, for one sample rate. That takes a while,
/// once: the result is kept for the user, and every front finds it. All calls come from the host's thread.
class EarsFitting {
public:
    /// One that has done nothing.
    EarsFitting();
    /// Gives up.
    ~EarsFitting();

    static bool IsFor(std::filesystem::path const& file);

    /// Begins with a file, and gives up what was begun before.
    /// @param samplerate  [Hz]
    void Begin(Lume::EarsFile measurements, float samplerate);
    /// Returns within a second, even in the middle.
    void GiveUp();

    /// Whether there is something to Take, now or later.
    bool IsBusy() const;
    /// The set of filters, once it is there; it lies there as long as this object lives and nothing else is begun.
    /// @throws std::runtime_error that names the file; nothing is left to take then
    std::optional<std::filesystem::path> Take();
    /// What is to be told since the last call.
    std::vector<std::pair<max::ConsoleLevel, std::string>> TakeLines();

    /// What was begun last, for which rate, and the set that came of it; empty and 0 before.
    Lume::EarsFile const& Measurements() const { return measurements; }
    float Samplerate() const { return samplerate; }
    std::filesystem::path const& Set() const { return set; }

private:
    struct Work;

    Lume::EarsFile measurements;
    float samplerate = 0.0f;
    std::filesystem::path set;
    std::unique_ptr<Work> work;
};

}  // namespace plugin
