#pragma once

#include "orvanverb/options/options.h"

namespace program {

/// Pans recordings with one method, or prints what a method would do. Tells about it on standard error.
/// @throws ProgramError
void RunPan(Options const& options);

}  // namespace program
