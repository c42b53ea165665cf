#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "orvanverb/hrtf/transaural_options.h"

namespace program {

/// What the user asked of a set of filters.
struct HrtfOptions {
    enum class Action { Info, Convert, Transaural };

    Action action = Action::Info;
    std::string input, output;
    std::optional<int> rate;  // [Hz]; none: that of the input
    bool fir = false;
    std::optional<std::size_t> length;  // most samples of an impulse response
    std::optional<bool> equalise;       // none: measurements, but not filters
    TransauralOptions transaural;
};

/// Prints the header of a set and a short check of it on standard output.
/// @return the exit status: 1 if the check found a fault
/// @throws WorkError that names the file
int ShowHrtf(HrtfOptions const& options);

/// Makes a file for the engine's panners, and tells about it on standard error.
/// @throws WorkError that names the file, UsageError for a name or option that can't be meant
void ConvertHrtf(HrtfOptions const& options);

/// Makes a file of filters for a transaural network, and tells about it on standard error.
/// @throws as ConvertHrtf
void MakeTransaural(HrtfOptions const& options);

}  // namespace program
