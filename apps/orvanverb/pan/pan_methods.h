#pragma once

#include <string>
#include <vector>

#include "pan/pan_factory.h"

namespace program {

/// @throws UsageError for a name that is none
Lume::PanKind const& FindPanMethod(std::string const& name);

/// The numbers of outputs for which a method has a panner, from 2 to 64.
std::vector<unsigned int> OutputCounts(Lume::Pan::Type type);

/// Numbers in words: "2", "4 to 8, 12", "4, 9, 16 ... 64".
std::string CountsText(std::vector<unsigned int> const& counts);

/// @throws UsageError for a name that is none, or one that the method doesn't have
Lume::Pan::SubType FindPanSubType(Lume::PanKind const& method, std::string const& name);

/// What --list prints: each method with its numbers of outputs, and the roles of the binaural one.
std::string PanMethodList();

}  // namespace program
