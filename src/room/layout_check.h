#pragma once

#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "pan/pan_factory.h"

namespace Lume {

/// What about a layout keeps a method from playing as it should, a line each: loudspeakers in one place, all in one
/// plane or line, gaps that no pair can serve, heights that aren't heard. Methods end in silence there, without a word.
std::vector<std::string> CheckLayout(PanKind const& method, std::vector<CartesianVector> const& positions);

}  // namespace Lume
