#pragma once

#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// The mean of the points; the zero vector for an empty list.
void ComputeBarycenter(std::vector<CartesianVector> const& points, CartesianVector& result);

/// Largest distance of a point from the origin [m], 0 for an empty list.
float GetRadiusOfTheLargestSphereEncompassing(std::vector<CartesianVector> const& points);

/// Largest distance of a point from a centre [m], 0 for an empty list.
float GetRadiusOfTheLargestSphereEncompassing(std::vector<CartesianVector> const& points,
                                              CartesianVector const& centre);

/// Where the line through p1 and p2 meets a sphere.
/// @param first   the meeting point further on in the direction from p1 to p2
/// @param second  the other one; the same where the line is a tangent
/// @return false, and nothing is written, if they don't meet. A line whose points coincide isn't guarded against: its
///         meeting points may be not numbers.
bool IntersectionBetweenLineAndSphere(CartesianVector const& centre, float radius, CartesianVector const& p1,
                                      CartesianVector const& p2, CartesianVector& first, CartesianVector& second);

/// Brings loudspeakers at different distances to a common sphere about the origin: what delays make them sound as if
/// they all stood there.
/// @param points     loudspeakers; one that stands at the origin has no direction, its results are not numbers
/// @param radius     becomes the largest distance of a loudspeaker [m]
/// @param projected  become the points of the sphere in the loudspeakers' directions
/// @param delays     become the travel times from there to the loudspeakers at 340 m/s [ms]; 0 for the farthest one
void ComputeSpeakersTimeDelays(std::vector<CartesianVector> const& points, float& radius,
                               std::vector<CartesianVector>& projected, std::vector<float>& delays);

/// The same without the delays.
void ComputeSpeakersProjectionOnSphere(std::vector<CartesianVector> const& points, float& radius,
                                       std::vector<CartesianVector>& projected);

}  // namespace Lume
