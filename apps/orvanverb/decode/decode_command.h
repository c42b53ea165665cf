#pragma once

#include "orvanverb/options/options.h"

namespace program {

/// Decodes a recording of a format, or prints what a decoder would do. Tells about it on standard error.
/// @throws ProgramError
void RunDecode(Options const& options);

}  // namespace program
