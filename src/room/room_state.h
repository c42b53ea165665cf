#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "geometry/orientation.h"
#include "room/source_strip.h"

namespace Lume {

/// A file of filters for headphones, as a state remembers it.
struct EarsFile {
    std::filesystem::path path;  ///< empty: the built-in set
    std::uint64_t checksum = 0;  ///< of the file's bytes
};

/// Whether a text is one: UTF-8, with no control characters but blanks and line ends.
bool IsText(std::string_view text) noexcept;

/// All that a room was told, as a value, and as text that people can read and programs keep:
///
///     orvanverb-state 1
///     numsources 1
///     numspeakers 2
///     numinternals 8
///     format ambix
///     vector 64
///     ears 8f3c0a6b5d21e794 ../sets/mine.hrtf
///     orientation 30 0 0
///     mute 0
///     bypass 0
///     sourcespositions 0 1 0
///     sourcesgains -6
///     sourcesmutes 0
///     sourcename 1 lead voice
///     speakerspositions -0.5 0.8660254 0 0.5 0.8660254 0
///     gain -3
///     tr0 2.5
///     ...
///
/// The first line is the version. Then comes one name and its values a line, the controls in the order of their table.
/// Numbers read back to the same bits. Blank lines and lines that begin with # are passed over.
struct RoomState {
    /// A room as it is when nobody has told it anything: every control at its standard.
    RoomState();

    /// Reads a state. What is missing stays as in a new state; the sizes stay 0. Files of earlier programs hold the
    /// object's attributes instead and no version, the shelves as six values each: they are read as well.
    /// @param folder  that the path of the ears is relative to
    /// @throws std::invalid_argument "LINE: what is wrong, and what would be right"
    static RoomState Parse(std::string_view text, std::filesystem::path const& folder = {});

    /// Whether a text begins as a state with a version, whichever that is.
    static bool IsState(std::string_view text) noexcept;

    /// @param folder  of the file that the text is for: the path of the ears becomes relative to it where it can
    std::string Text(std::filesystem::path const& folder = {}) const;

    unsigned int numSources = 0, numSpeakers = 0, numInternals = 0;  // 0: not told
    std::size_t vectorSize = 0;                                      // [samples]; 0: not told
    std::string format;                                              // of the outputs; empty: by their number
    EarsFile ears;
    Orientation orientation;  // of the listener
    bool mute = false, bypass = false;
    std::vector<CartesianVector> sources, speakers;  // [m]; empty: the built-in layout
    std::vector<SourceStrip> strips;                 // one for each source; fewer: the others pass as they are
    std::vector<float> controls;                     // one for each of roomControls
    std::vector<std::string> unknown;                // lines with names of a later version, as they stood
};

}  // namespace Lume
