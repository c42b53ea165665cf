#pragma once

#include <cstddef>
#include <vector>

#include "geometry/vector_algebra.h"

namespace program {

/// So many directions, spread evenly over the sphere (Fibonacci's spiral).
std::vector<Lume::CartesianVector> EvenDirections(std::size_t count);

/// The share of the sphere of each direction, for means over the sphere; the sum is 1. Parts of the sphere that nobody
/// measured, such as what lies below a floor, count for nobody.
std::vector<double> SphereShares(std::vector<Lume::CartesianVector> const& directions);

}  // namespace program
