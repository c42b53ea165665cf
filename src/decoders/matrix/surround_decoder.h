#pragma once

#include "decoders/decoder.h"

namespace Lume {

/// The decoder of type surround for numbers of channels: 2 are Lt/Rt, 3 are left, right, surround, and 4 are left,
/// centre, right, surround. A NullDecoder where there is nothing to convert.
Decoder* CreateSurroundDecoder(unsigned int numInputs, unsigned int numOutputs);

}  // namespace Lume
