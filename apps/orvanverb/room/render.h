#pragma once

#include "orvanverb/options/options.h"

namespace program {

/// Renders recordings in a room, or without any its impulse response, and tells about it on standard error.
/// @throws ProgramError
void RunRender(Options const& options);

}  // namespace program
