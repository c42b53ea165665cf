#pragma once

#include <vector>

#include "pan/amplitude_panning.h"

namespace Lume {

/// Panning of constant power on any ring: the two loudspeakers on either side of the source's azimuth share it by
/// cosine and sine of where it stands in their gap. Distances and heights make no difference.
class AngularPanning : public AmplitudePanning {
public:
    /// Starts with a regular ring.
    AngularPanning(unsigned int numInputs, unsigned int numOutputs);

    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return new AngularPanning(requestedInputs, requestedOutputs);
    }

    /// Of loudspeakers with exactly the same azimuth only the last one sounds.
    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

private:
    struct Speaker {
        float angle;  // mathematical azimuth [rad]
        unsigned int output;
    };

    std::vector<Speaker> speakersByAngle;
};

}  // namespace Lume
