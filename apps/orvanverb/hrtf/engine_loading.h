#pragma once

#include <functional>
#include <string>

#include "hrtf/hrtf_header_infos.h"

/// How the program lets the engine read its files: a failure is one line of the program's.
namespace program {

/// A name without the right extension would stand for the built-in set, and a missing file would be told in the
/// engine's words.
/// @param extensions  in words, as ".hrtf or .coll"; the name must end in one of them
/// @throws WorkError that names the file
void RequireSetFile(std::string const& path, std::string const& extensions);

/// Runs a loader of the engine, in the file's folder: the engine looks for extensions anywhere in a name, and a folder
/// may have any name.
/// @param load  takes the file's name as it is there
/// @throws WorkError that names the file
void LoadQuietly(std::string const& path, std::function<void(std::string const& name)> const& load);

/// What to tell of a set that was made for another rate: it is used as it is, and its filters are shifted in frequency.
/// Empty if the rates agree.
/// @param samplerate  of the output [Hz]
std::string RateRemark(std::string const& path, Lume::HrtfHeaderInfos const& header, int samplerate);

}  // namespace program
