#pragma once

#include <string>

#include "decoders/transaural/transaural_decoder.h"

namespace program {

/// The network that takes a type of set, by its name; empty for a type that none takes.
std::string NetworkFor(Lume::HrtfType type);

/// Loads the filters of a transaural network.
/// @throws WorkError that names the file, and says what it is for if it isn't for this network, or what is wrong with
///         its filters
void LoadFilters(std::string const& path, Lume::TransauralDecoder& decoder);

/// What to tell of a set whose nearest filters are for loudspeakers that stand clearly elsewhere; else nothing.
/// @param path  a .bin2trans file
std::string OtherPair(std::string const& path, Lume::TransauralDecoder const& decoder);

}  // namespace program
