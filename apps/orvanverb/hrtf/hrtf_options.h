#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "orvanverb/hrtf/transaural_options.h"
#include "orvanverb/options/options.h"

namespace program {

/// What the user asked of a set of filters. Without a rate it is that of the input.
struct HrtfOptions : Options {
    std::string input;  // a file, or "kemar"
    bool fir = false;
    std::optional<std::size_t> length;  // most samples of an impulse response
    std::optional<bool> equalise;       // none: measurements, but not filters
    TransauralOptions transaural;
};

}  // namespace program
