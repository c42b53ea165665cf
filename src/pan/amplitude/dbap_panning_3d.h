#pragma once

#include "pan/amplitude/dbap_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Distance-based panning in space. Sources outside the loudspeakers keep their power, unless
/// MuteSourceOutsideSpeakersHull silences them.
class DbapPanning3D : public DbapPanning {
public:
    DbapPanning3D(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning without outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<DbapPanning3D>(requestedOutputs != 0, requestedInputs, requestedOutputs);
    }

    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

private:
    float radius = 0.0f;  // largest distance of a loudspeaker from the barycentre [m]
};

}  // namespace Lume
