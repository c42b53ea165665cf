#pragma once

#include "pan/amplitude_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Two loudspeakers ahead, panned by level alone: the tangent law at constant power (Bernfeld, "Attempts for better
/// understanding of the directional stereophonic listening mechanism", 44th AES Convention, 1973).
///
/// Between the loudspeakers the velocity vector points at the source. What stands beside the pair plays from the nearer
/// loudspeaker, what stands behind the listener from its mirror image ahead. A source near the listener, or above,
/// moves to the middle.
class StereoPairPanning : public AmplitudePanning {
public:
    /// Starts with loudspeakers at -30 and 30 degrees.
    /// @param numOutputs  two
    StereoPairPanning(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning unless there are two outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<StereoPairPanning>(requestedOutputs == 2, requestedInputs, requestedOutputs);
    }

    /// Pairs narrower than 2 or wider than 178 degrees count as that wide.
    /// @param positions  the left loudspeaker, then the right one
    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

private:
    float middleRad = 0.0f;  // listener's azimuth
    float halfAngleRad;
};

}  // namespace Lume
