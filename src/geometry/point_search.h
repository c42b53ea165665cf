#pragma once

#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Nearest points of a list. Distances are compared squared; the functions whose name ends in 2D look at x and y only.

/// A squared distance and the point that it belongs to.
struct IndexedDist {
    float dist = 0.0f;  // [m^2]
    unsigned int index = 0;

    static bool sortIndexedDist(IndexedDist const& a, IndexedDist const& b) { return a.dist < b.dist; }
};

/// Index of the point nearest in space; the first one on a tie. 0 for an empty list, or when no point is nearer than
/// the square root of 1e7 (about 3162 m).
unsigned int GetClosestPointIndex(CartesianVector const& point, std::vector<CartesianVector> const& points);

/// The same in the horizontal plane.
unsigned int GetClosestPointIndex2D(CartesianVector const& point, std::vector<CartesianVector> const& points);

/// Indices of the n points nearest in the horizontal plane, nearest first.
/// @param indices  becomes n long
/// @param n        at most the number of points; what is above it gives entries of 0
void GetNClosestPointIndex2D(CartesianVector const& point, std::vector<CartesianVector> const& points,
                             std::vector<unsigned int>& indices, unsigned int n);

}  // namespace Lume
