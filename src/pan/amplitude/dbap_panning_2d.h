#pragma once

#include <vector>

#include "geometry/convex_hull_2d.h"
#include "pan/amplitude/dbap_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Distance-based panning in the horizontal plane. A source outside the loudspeakers' convex hull fades with its
/// distance, or is silent if MuteSourceOutsideSpeakersHull says so.
class DbapPanning2D : public DbapPanning {
public:
    DbapPanning2D(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning without outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<DbapPanning2D>(requestedOutputs != 0, requestedInputs, requestedOutputs);
    }

    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

    /// Where the line from a position to the barycentre meets the side of the hull next to the position; the nearest
    /// vertex if it meets neither of the two sides at hand.
    /// @param result  its x and y are written
    void computeProjectionOnSpeakerHull(CartesianVector const& position, CartesianVector& result) const;

private:
    ConvexHull2D hull;
    std::vector<CartesianVector> hullVertices;
};

}  // namespace Lume
