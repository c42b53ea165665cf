#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "orvanverb/options/transaural_options.h"

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

}  // namespace program
