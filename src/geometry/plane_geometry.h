#pragma once

#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Geometry of the horizontal plane: all functions read x and y only.

/// Compares the mathematical azimuths of two CartesianVectors, in the form that qsort wants: below 0, 0, above 0.
int CompareAzimuth(void const* a, void const* b);

/// Sorts by ascending mathematical azimuth, that is counter-clockwise from straight left; points of one azimuth keep
/// their order. The amplitude panners sort the other way round, by the listener's azimuth.
void SortByAscendingAzimuth(std::vector<CartesianVector>& points);

/// Signed area of a polygon [m^2] (the shoelace formula): positive for counter-clockwise vertices, 0 for fewer than 3.
float AreaOf2DPolygon(std::vector<CartesianVector> const& points);

/// Whether a point lies inside a polygon, by the number of edges that a ray to +x crosses (after Shimrat, "Algorithm
/// 112: position of point relative to polygon", Comm. ACM 5(8), 1962). For points exactly on an edge the answer may
/// depend on the order of the vertices.
bool IsInside2DPolygon(CartesianVector const& point, std::vector<CartesianVector> const& points);

/// Whether p lies on the line through a and b. Floats are compared exactly.
bool BelongsToLine2D(CartesianVector const& a, CartesianVector const& b, CartesianVector const& p);

/// Whether p lies on the segment from a to b, ends included. Floats are compared exactly.
bool BelongsToSegment2D(CartesianVector const& a, CartesianVector const& b, CartesianVector const& p);

/// Intersection of the lines through a1, a2 and through b1, b2.
/// @param result  its x and y are written, its z stays
/// @return false for parallel lines, and where two points of a line coincide; result then stays as it is
bool Intersect2D(CartesianVector const& a1, CartesianVector const& a2, CartesianVector const& b1,
                 CartesianVector const& b2, CartesianVector& result);

}  // namespace Lume
