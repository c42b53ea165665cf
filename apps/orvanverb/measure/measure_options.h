#pragma once

#include <optional>
#include <string>

#include "orvanverb/options/options.h"

namespace program {

/// What the command measure knows beyond its inputs.
struct MeasureOptions : Options {
    bool json = false;
    bool thirds = false;                  // bands of a third of an octave
    std::optional<unsigned int> channel;  // only this one, counted from 1
    std::optional<std::string> against;   // a response to compare with
    std::optional<std::string> plot;      // a picture: .svg or .png
};

}  // namespace program
