#pragma once

#include <vector>

#include "orvanverb/options/options.h"

namespace program {

/// Refuses a call that would write over what it reads, write one file twice, or replace a file without the leave to do
/// so: a recording is easily lost by one wrong word. Links and other spellings of a path don't hide it.
/// @throws UsageError, or WorkError for a file that is there, which names the file and says what is wrong
void RequireSafeOutputs(Options const& options);

/// The files that a call reads beside its recordings, and those that it writes, each with its role.
std::vector<Options::NamedFile> OtherReadFiles(Options const& options);
std::vector<Options::NamedFile> WrittenFiles(Options const& options);

}  // namespace program
