#pragma once

#include "orvanverb/hrtf/hrtf_options.h"

namespace program {

/// Prints the header of a set and a short check of it on standard output.
/// @return the exit status: 1 if the check found a fault
/// @throws WorkError that names the file
int ShowHrtf(HrtfOptions const& options);

/// Makes a file for the engine's panners, and tells about it on standard error.
/// @throws WorkError that names the file, UsageError for a name or option that can't be meant
int ConvertHrtf(HrtfOptions const& options);

/// Makes a file of filters for a transaural network, and tells about it on standard error.
/// @throws as ConvertHrtf
int MakeTransaural(HrtfOptions const& options);

}  // namespace program
