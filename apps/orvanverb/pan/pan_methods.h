#pragma once

#include <span>
#include <string>
#include <vector>

#include "pan/pan.h"

namespace program {

/// A panning method as a user chooses it.
struct PanMethod {
    /// What its outputs are.
    enum class Outputs { Two, Loudspeakers, Harmonics };

    Lume::Pan::Type type;
    Outputs outputs;
    /// How many if the user doesn't say: a number of channels, or a layout.
    char const* usual;
    char const* summary;
};

std::span<PanMethod const> PanMethods();

/// @throws UsageError for a name that is none
PanMethod const& FindPanMethod(std::string const& name);

/// The numbers of outputs for which a method has a panner, from 2 to 64.
std::vector<unsigned int> OutputCounts(Lume::Pan::Type type);

/// Numbers in words: "2", "4 to 8, 12", "4, 9, 16 ... 64".
std::string CountsText(std::vector<unsigned int> const& counts);

/// @throws UsageError for a name that is none, or one that the method doesn't have
Lume::Pan::SubType FindPanSubType(PanMethod const& method, std::string const& name);

/// What --list prints: each method with its numbers of outputs, and the roles of the binaural one.
std::string PanMethodList();

}  // namespace program
