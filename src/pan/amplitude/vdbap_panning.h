#pragma once

#include <memory>
#include <vector>

#include "pan/amplitude/dbap_panning_3d.h"
#include "pan/amplitude/vbap_panning.h"
#include "pan/amplitude_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Fades from distance-based panning near the loudspeakers' centre to triplet panning far from it: between 0.7 and 1.3
/// times the radius of the layout the gains of both are mixed in proportion. Power is constant outside that shell only.
class VDbapPanning : public AmplitudePanning {
public:
    /// Starts with a regular ring of radius 1, on which there are no triplets.
    VDbapPanning(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning below three outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<VDbapPanning>(requestedOutputs >= 3, requestedInputs, requestedOutputs);
    }

    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;
    void SetNumInputs(unsigned int newNumInputs) override;
    void SetNumOutputs(unsigned int newNumOutputs) override;

private:
    float radius = 0.0f;  // largest distance of a loudspeaker from the barycentre [m]
    std::vector<CartesianVector> speakerPositions;
    CartesianVector barycenter;
    // Only their laws are used, not their mixing. Null for too few outputs.
    std::unique_ptr<DbapPanning3D> dbap;
    std::unique_ptr<VbapPanning> vbap;
    std::vector<float> vbapGains;  // numInputs x numOutputs
    std::vector<float> dbapGains;
};

}  // namespace Lume
