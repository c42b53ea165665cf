#pragma once

#include <optional>
#include <string>

#include "hrtf/sdif_set.h"

namespace program {

/// The name under which the table holds the length of the blocks for which a set was made, where that matters.
constexpr char const* blockLengthKey = "BlockLength";

/// A set of filters as the bytes of an SDIF file, version 3: a table of names and values, the types that aren't
/// predefined, and a frame for each point with its position, its delay and its filters. The same set gives the same
/// bytes.
///
/// The engine tells the three kinds apart by the end of the file's name: `.hrtf` for binaural sets and `.near` for
/// near-field compensation have one position a point, `.bin2trans` for loudspeakers one (the left loudspeaker of a
/// symmetric pair) or two (the left and the right one). Filters of type FIR have no delay of their own in these files:
/// theirs lies in the impulse responses.
/// @param set     the counts of its header are those of the file, except for the number of points, which is counted.
///                Each point has channels x coefficients values
/// @param author  who made the set; the engine asks for it and doesn't keep it
/// @param blockLength  samples of the blocks in which it has to be used; none: any
std::string SdifSetBytes(Lume::SdifSet const& set, std::string const& author,
                         std::optional<unsigned int> blockLength = std::nullopt);

}  // namespace program
