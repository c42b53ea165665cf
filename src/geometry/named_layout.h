#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Loudspeakers under a name that people know: where they stand, and how files and interfaces number them.
///
/// Names count loudspeakers around, low-frequency channels and loudspeakers above, "7.1.4"; the engine has no use for
/// low-frequency channels, which stay silent. Positions and orders are those of Recommendation ITU-R BS.2051 where it
/// has the layout, but for the rears and heights of the smaller ones, which stand where cinemas and studios put them:
/// behind at 150 degrees as in the built-in seven, above at 45 degrees.
struct NamedLayout {
    /// In fileOrder: a channel without a loudspeaker of the engine.
    static constexpr std::size_t silent = std::numeric_limits<std::size_t>::max();

    std::string name;
    /// In the engine's order, on a sphere of radius 1 [m]. Where the engine has a table for so many, it is the table's.
    std::vector<CartesianVector> positions;
    std::vector<std::size_t> fileOrder;  ///< engine output of each channel of a file
    std::vector<std::string> labels;     ///< of each channel of a file: "L", "R", "C", "LFE", ...
    std::uint32_t channelMask = 0;       ///< of the channels in WAV files; 0 where it has no bit for one of them

    unsigned int NumSilent() const noexcept { return static_cast<unsigned int>(fileOrder.size() - positions.size()); }
};

/// All of them, in the order in which help lists them. Allocates.
std::vector<std::string> NamedLayoutNames();

/// A layout by its name; without a name in an empty one. Allocates.
NamedLayout FindNamedLayout(std::string_view name);

/// The layout that has just these positions, without a name in an empty one if there is none. Of two that differ in
/// silent channels the one without. Allocates.
NamedLayout FindNamedLayout(std::vector<CartesianVector> const& positions);

/// Where to put so many loudspeakers in space if nobody says: a named layout with heights where there is one, else
/// spread evenly over the sphere. Allocates.
std::vector<CartesianVector> UsualLayoutInSpace(unsigned int numSpeakers);

}  // namespace Lume
