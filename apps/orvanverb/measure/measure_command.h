#pragma once

#include "orvanverb/measure/measure_options.h"

namespace program {

/// Measures impulse responses and prints what came out.
/// @throws ProgramError
void RunMeasure(MeasureOptions const& options);

}  // namespace program
