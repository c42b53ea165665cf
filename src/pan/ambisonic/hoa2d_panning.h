#pragma once

#include "pan/ambisonic/hoa_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Ambisonic encoding for the plane: 2 order + 1 outputs, one per circular harmonic (elevated sources enter their
/// directional channels by the cosine of the elevation to the power of the degree).
class HOA2DPanning : public HOAPanning {
public:
    /// The order is half the number of outputs less one; the convention SN2D.
    HOA2DPanning(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning for an even number of outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<HOA2DPanning>(requestedOutputs % 2 != 0, requestedInputs, requestedOutputs);
    }

    using HOAPanning::SetEncodingConvention;
    /// SN2D or N2D; any other becomes SN2D.
    void SetEncodingConvention(HOAEncodingConvention convention) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;
};

}  // namespace Lume
