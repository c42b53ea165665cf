#pragma once

#include <string>

#include "hrtf/sdif_set.h"

namespace program {

/// A set as the text that the built-in ones are kept in: for each direction of their grid a row of the left ear's delay
/// and sections; the right ear's are those of the mirrored direction. Numbers read back to the same bits.
/// @throws std::invalid_argument for sections of another number, other directions or ears that aren't alike
std::string CollText(Lume::SdifSet const& set);

}  // namespace program
