#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "orvanverb/options/options.h"
#include "orvanverb/room/scene.h"
#include "patcher/box.h"

namespace program {

/// Where the sources of a recording stand, and when they move: the built-in places for their number, what the options
/// say, and a scene, of which only the messages that move sources or turn the listener act.
class SourceMotion {
public:
    /// @param newSamplerate  [Hz]
    /// @throws ProgramError that names the option, or file and line
    SourceMotion(unsigned int numSources, Options const& options, double newSamplerate);
    /// @param newScene  that of the options, which has been read: a pipe can't be read twice
    SourceMotion(unsigned int numSources, Options const& options, Scene newScene, double newSamplerate);

    /// What happens before a frame, counted from the recording's first.
    /// @return lines to be shown
    std::vector<std::string> Advance(std::uint64_t beforeFrame);

    /// What to say of a scene that goes on behind the end; empty if it doesn't.
    std::string PendingRemark() const { return scene.PendingRemark(); }

    std::vector<Lume::CartesianVector> const& Positions() const { return positions; }
    Lume::Orientation const& Orientation() const { return orientation; }

private:
    std::vector<std::string> Take(std::string_view message);
    void Move(std::vector<max::t_atom> const& atoms);
    Scene::Listener Listener();

    double samplerate;  // [Hz]
    std::vector<Lume::CartesianVector> positions;
    Lume::Orientation orientation;  // of the listener
    Scene scene;
    std::vector<std::string> remarks;
    std::string complaint;
    max::Box box;  // an empty one: its console hears the readers of positions
};

/// Checks that an option places a source that is there.
/// @throws UsageError otherwise
void RequireSource(Options::SourcePlace const& place, unsigned int numSources);

}  // namespace program
