#pragma once

#include "orvanverb/decode/decode_options.h"

namespace program {

/// Decodes a recording of a format, or prints what a decoder would do. Tells about it on standard error.
/// @throws ProgramError
void RunDecode(DecodeOptions const& options);

}  // namespace program
