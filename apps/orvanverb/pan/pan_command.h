#pragma once

#include "orvanverb/pan/pan_options.h"

namespace program {

/// Pans recordings with one method, or prints what a method would do. Tells about it on standard error.
/// @throws ProgramError
void RunPan(PanOptions const& options);

}  // namespace program
