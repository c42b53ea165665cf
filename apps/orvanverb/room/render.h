#pragma once

#include "orvanverb/options/options.h"

namespace program {

/// Renders recordings in a room, and tells about it on standard error.
/// @throws ProgramError
void RunRender(Options const& options);

/// Writes the impulse response of a room in the same way.
void RunImpulseResponse(Options const& options);

}  // namespace program
