#pragma once

#include <cstddef>
#include <vector>

#include "geometry/cartesian_vector.h"

namespace program {

float Dot(Lume::CartesianVector const& a, Lume::CartesianVector const& b);
float Length(Lume::CartesianVector const& a);

/// The direction of a vector that isn't 0, at distance 1.
Lume::CartesianVector Unit(Lume::CartesianVector const& a);

/// So many directions, spread evenly over the sphere (Fibonacci's spiral).
std::vector<Lume::CartesianVector> EvenDirections(std::size_t count);

/// The share of the sphere of each direction, for means over the sphere; the sum is 1. Parts of the sphere that nobody
/// measured, such as what lies below a floor, count for nobody.
std::vector<double> SphereShares(std::vector<Lume::CartesianVector> const& directions);

}  // namespace program
