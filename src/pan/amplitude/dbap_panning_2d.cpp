#include "pan/amplitude/dbap_panning_2d.h"

#include <algorithm>
#include <cmath>

#include "geometry/plane_geometry.h"
#include "geometry/point_search.h"
#include "geometry/reach.h"
#include "geometry/space_geometry.h"
#include "geometry/vector_algebra.h"

namespace Lume {

namespace {

/// Whether p lies in the rectangle with the corners a and b.
bool IsWithinBounds(CartesianVector const& p, CartesianVector const& a, CartesianVector const& b) {
    return p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) && p.y >= std::min(a.y, b.y) &&
           p.y <= std::max(a.y, b.y);
}

}  // namespace

DbapPanning2D::DbapPanning2D(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : DbapPanning(numberOfInputs, numberOfOutputs) {
    const std::vector<CartesianVector> ring = speakerPositions;
    DbapPanning2D::SetLoudspeakerPositions(ring.data());
}

void DbapPanning2D::SetLoudspeakerPositions(CartesianVector const* positions) {
    speakerPositions.resize(numOutputs);
    std::transform(positions, positions + numOutputs, speakerPositions.begin(), WithinReach);
    ComputeBarycenter(speakerPositions, barycenter);
    hull.SetPoints(speakerPositions);
    hull.GetHullVertex(hullVertices);
    forceUpdate(false);
}

void DbapPanning2D::convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) {
    Distribute(position, SquaredLength2D(position - barycenter), true, gains, sourceIndex);
    if (hull.Contains(position)) return;
    if (muteOutsideHull) {
        std::fill_n(gains, numOutputs, 0.0f);
        return;
    }
    CartesianVector const& nearest = hullVertices[GetClosestPointIndex(position, hullVertices)];
    // A metre on either side, so that the fade has no pole at the barycentre. Distances in space, vertices at height 0.
    const float fade = (Distance(barycenter, nearest) + 1.0f) / (Distance(barycenter, position) + 1.0f);
    for (unsigned int j = 0; j < numOutputs; ++j) gains[j] *= fade;
}

void DbapPanning2D::computeProjectionOnSpeakerHull(CartesianVector const& position, CartesianVector& result) const {
    if (hullVertices.empty()) return;
    std::vector<unsigned int> nearest;
    GetNClosestPointIndex2D(position, hullVertices, nearest, 3);
    CartesianVector const& a = hullVertices[nearest[0]];
    const CartesianVector from = position;  // which may be the result
    for (unsigned int other = 1; other < 3; ++other) {
        CartesianVector const& b = hullVertices[nearest[other]];
        if (!Intersect2D(a, b, from, barycenter, result)) {
            result = a;
            return;
        }
        if (IsWithinBounds(result, a, b)) return;
    }
    result = a;
}

}  // namespace Lume
