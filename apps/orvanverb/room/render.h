#pragma once

#include "orvanverb/options/options.h"

namespace program {

/// Does what the user asked for and tells about it on standard error.
/// @throws ProgramError
void Run(Options const& options);

}  // namespace program
