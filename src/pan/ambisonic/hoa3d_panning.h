#pragma once

#include "pan/ambisonic/hoa_panning.h"

namespace Lume {

/// Ambisonic encoding for space: (order + 1)^2 outputs, one per spherical harmonic. SN3D in the sorting
/// IncreasingDegrees is the form that other tools call ACN/SN3D, but for the azimuth, which starts on the right here.
class HOA3DPanning : public HOAPanning {
public:
    /// The order is the root of the number of outputs less one; the convention SN3D.
    HOA3DPanning(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning unless the number of outputs is a square from 4 on.
    static Pan* Create(unsigned int numInputs, unsigned int numOutputs);

    using HOAPanning::SetEncodingConvention;
    /// SN3D or N3D; any other becomes SN3D.
    void SetEncodingConvention(HOAEncodingConvention convention) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;
};

}  // namespace Lume
