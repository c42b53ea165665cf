#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "orvanverb/layout/listener_position.h"

namespace program {

/// A place in the engine's frame. Goes the same way as the built-in layouts, so that a source at a loudspeaker's
/// azimuth meets it to the last bit.
Lume::CartesianVector ToCartesian(ListenerPosition const& position);

/// A place in the axes of AmbiX and most other ambisonic tools: x ahead, y to the left.
Lume::CartesianVector ToAmbixAxes(Lume::CartesianVector const& position);

/// The loudspeakers of a rendering, in the engine's order, and how they lie in the file.
struct SpeakerLayout {
    /// Reads a count or the name of a position file.
    /// @throws UsageError for a count that can't be used, WorkError for a file that can't
    static SpeakerLayout Parse(std::string const& text);

    /// Loudspeakers anywhere: the file's channels go as the engine has them.
    static SpeakerLayout InEngineOrder(std::vector<Lume::CartesianVector> positions);

    /// The listener's azimuth of a file channel's loudspeaker [degrees].
    float AzimuthDeg(std::size_t fileChannel) const;

    std::vector<Lume::CartesianVector> positions;

    /// Engine output of each channel of the file. The built-in layouts that players know by a channel mask are stored
    /// in the order of that mask, or they would come out of the wrong loudspeakers; all others as the engine has them.
    std::vector<std::size_t> fileOrder;

    /// ChannelMask of the file, or 0 for loudspeakers that it can't name.
    std::uint32_t channelMask = 0;
};

}  // namespace program
