#pragma once

#include "pan/amplitude_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Panning of constant power on left, right and surround (3 outputs) or left, centre, right and surround (4 outputs).
class SurroundPanning : public AmplitudePanning {
public:
    /// Starts with left and right at -30 and 30 degrees and every source a metre ahead.
    SurroundPanning(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning unless there are three or four outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<SurroundPanning>(requestedOutputs == 3 || requestedOutputs == 4, requestedInputs,
                                         requestedOutputs);
    }

    /// Only the azimuths of the left and the right loudspeaker matter; the surround is always behind.
    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    /// Leaves the gains as they are unless there are three or four outputs.
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

private:
    float corners[4] = {-30.0f, 30.0f, 180.0f, 180.0f};  // listener's azimuths [degrees]
};

}  // namespace Lume
