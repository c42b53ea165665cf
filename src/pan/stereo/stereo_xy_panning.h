#pragma once

#include "pan/amplitude_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// A coincident pair of directional microphones, aimed 45 degrees to the left and to the right.
class StereoXYPanning : public AmplitudePanning {
public:
    /// @param numOutputs  two
    explicit StereoXYPanning(unsigned int numInputs, unsigned int numOutputs = 2);

    /// A NullPanning unless there are two outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<StereoXYPanning>(requestedOutputs == 2, requestedInputs, requestedOutputs);
    }

    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;
};

}  // namespace Lume
