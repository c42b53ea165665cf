#pragma once

#include "orvanverb/options/options.h"

namespace program {

/// Refuses a call that would write over what it reads, or write one file twice: a recording is easily lost by one
/// wrong word. Links and other spellings of a path don't hide it.
/// @throws UsageError that names the file and what else it is in the call
void RequireSeparateFiles(Options const& options);

}  // namespace program
