#pragma once

#include "pan/amplitude/dbap_panning.h"

namespace Lume {

/// Distance-based panning in space. Sources outside the loudspeakers keep their power, unless
/// MuteSourceOutsideSpeakersHull silences them.
class DbapPanning3D : public DbapPanning {
public:
    DbapPanning3D(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning without outputs.
    static Pan* Create(unsigned int numInputs, unsigned int numOutputs);

    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

private:
    float radius = 0.0f;  // largest distance of a loudspeaker from the barycentre [m]
};

}  // namespace Lume
