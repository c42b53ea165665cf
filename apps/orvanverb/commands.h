#pragma once

#include "orvanverb/options/options.h"

namespace program {

/// Does what the options ask for.
/// @return the exit status
/// @throws ProgramError
int Obey(Options const& options);

}  // namespace program
