#pragma once

#include "pan/amplitude_panning.h"

namespace Lume {

/// Panning by a recursive law of constant power on a ring of 4 to 8 or 12 loudspeakers, clockwise from the front left.
/// Only four of the loudspeakers, or the middles of four pairs, give the law their azimuths; the others are taken to
/// stand between them.
class RecursivePanning : public AmplitudePanning {
public:
    /// Starts with corners at -45, 45, 135 and -135 degrees and every source a metre ahead.
    RecursivePanning(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning unless the number of outputs is 4 to 8 or 12.
    static Pan* Create(unsigned int numInputs, unsigned int numOutputs);

    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    /// Leaves the gains as they are if there is no law for the number of outputs.
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

    /// Sets the corners, for sources that are placed from now on.
    /// @param newCorners  four listener's azimuths [degrees], clockwise from the front left
    void SetCorners(float const* newCorners);

private:
    float corners[4] = {-45.0f, 45.0f, 135.0f, -135.0f};
};

}  // namespace Lume
