#pragma once

#include <optional>
#include <string>

#include "orvanverb/options/options.h"

namespace program {

/// What the command decode knows beyond its input, output and loudspeakers.
struct DecodeOptions : Options {
    std::string type;
    std::string subType = "null";           // of the transaural type: its default network
    std::optional<unsigned int> outputs;    // of a type without loudspeakers
    std::optional<std::string> convention;  // "SN3D" and the like
    std::optional<std::string> sorting;
    std::string hoaMethod;  // of the ambisonic types; empty: pseudoinverse, allrad where that doesn't suit
    std::string weights = "basic";
    std::optional<float> crossoverHz;
    bool fuma = false;                   // the input has the channels of FuMa
    std::optional<std::string> filters;  // a file for the transaural type
    bool list = false;
    bool matrix = false;  // print the decoder's matrix and figures
};

}  // namespace program
