#pragma once

#include "orvanverb/options/options.h"

namespace program {

/// Measures impulse responses and prints what came out.
/// @throws ProgramError
void RunMeasure(Options const& options);

}  // namespace program
