#pragma once

#include <optional>
#include <string>

#include "orvanverb/options/options.h"

namespace program {

/// What the command pan knows beyond inputs, outputs and places.
struct PanOptions : Options {
    std::string model = "direct";
    std::optional<unsigned int> outputs;    // of an ambisonic method
    std::optional<std::string> convention;  // "SN3D" and the like
    std::optional<std::string> sorting;
    std::optional<std::string> nearfield;  // a file
    bool list = false;
    bool gains = false;     // print gains over azimuth instead of rendering
    bool triplets = false;  // print the triplets of a layout
};

}  // namespace program
