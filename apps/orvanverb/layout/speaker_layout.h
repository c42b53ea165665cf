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

/// The listener's azimuth of a place [degrees].
float AzimuthDeg(Lume::CartesianVector const& position);

/// The loudspeakers of a rendering, in the engine's order, and how they lie in the file.
struct SpeakerLayout {
    /// Reads a count, the name of a layout (FindNamedLayout, cube, lcrs) or that of a position file.
    /// @throws UsageError for a count that can't be used, WorkError for a file that can't
    static SpeakerLayout Parse(std::string const& text);

    /// Loudspeakers anywhere: the file's channels go as the engine has them, unless it is a layout that has a name.
    static SpeakerLayout Of(std::vector<Lume::CartesianVector> positions);

    /// Channels without loudspeakers.
    static SpeakerLayout Channels(unsigned int count, std::uint32_t mask);

    /// Whether a text names a layout that is no file.
    static bool IsName(std::string const& text);

    /// Outputs of the engine: the channels of the file but for those that stay silent.
    unsigned int NumOutputs() const;
    unsigned int NumFileChannels() const { return static_cast<unsigned int>(fileOrder.size()); }

    /// Whether any stands clearly above or below the ears.
    bool HasHeights() const;

    std::vector<Lume::CartesianVector> positions;

    /// Engine output of each channel of the file, NamedLayout::silent for a low-frequency one. The layouts that players
    /// know by a channel mask are stored in the order of that mask, or they would come out of the wrong loudspeakers.
    std::vector<std::size_t> fileOrder;

    std::vector<std::string> labels;  // of the channels of the file, if the layout has such

    /// ChannelMask of the file, or 0 for loudspeakers that it can't name.
    std::uint32_t channelMask = 0;
};

}  // namespace program
