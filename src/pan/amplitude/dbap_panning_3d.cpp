#include "pan/amplitude/dbap_panning_3d.h"

#include <algorithm>

#include "geometry/reach.h"
#include "geometry/space_geometry.h"
#include "geometry/vector_algebra.h"

namespace Lume {

DbapPanning3D::DbapPanning3D(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : DbapPanning(numberOfInputs, numberOfOutputs) {
    const std::vector<CartesianVector> ring = speakerPositions;
    DbapPanning3D::SetLoudspeakerPositions(ring.data());
}

void DbapPanning3D::SetLoudspeakerPositions(CartesianVector const* positions) {
    speakerPositions.resize(numOutputs);
    std::transform(positions, positions + numOutputs, speakerPositions.begin(), WithinReach);
    ComputeBarycenter(speakerPositions, barycenter);
    radius = GetRadiusOfTheLargestSphereEncompassing(speakerPositions, barycenter);
    forceUpdate(false);
}

void DbapPanning3D::convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) {
    const float centerDistanceSquared = SquaredLength(position - barycenter);
    Distribute(position, centerDistanceSquared, false, gains, sourceIndex);
    // A squared distance against a plain radius sets the border at the square root of the radius (kept: quirks.md 20).
    if (muteOutsideHull && centerDistanceSquared > radius) std::fill_n(gains, numOutputs, 0.0f);
}

}  // namespace Lume
