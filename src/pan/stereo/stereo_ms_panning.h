#pragma once

#include "pan/amplitude_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Mid-side stereo: output 0 is a cardioid to the front, output 1 a figure of eight across.
class StereoMSPanning : public AmplitudePanning {
public:
    /// @param numOutputs  two
    explicit StereoMSPanning(unsigned int numInputs, unsigned int numOutputs = 2);

    /// A NullPanning unless there are two outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<StereoMSPanning>(requestedOutputs == 2, requestedInputs, requestedOutputs);
    }

    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;
};

}  // namespace Lume
