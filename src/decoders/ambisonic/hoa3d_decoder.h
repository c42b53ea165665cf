#pragma once

#include "decoders/ambisonic/hoa_decoder.h"

namespace Lume {

/// Ambisonic decoder for loudspeakers all around: (order + 1)^2 channels of spherical harmonics.
class HOA3DDecoder : public HOADecoder {
public:
    /// @param numInputs  (order + 1)^2, at least 4
    HOA3DDecoder(unsigned int numInputs, unsigned int numOutputs, HOADecoderMethod method = pseudoinverse,
                 HOADecoderType type = basic, HOADecodingConvention convention = N3D);

    /// A NullDecoder for a number of inputs that is no whole order from 1 on.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    using HOADecoder::SetDecodingConvention;
    /// SN3D and N3D are stored, others aren't; the matrix is computed anew in any case.
    void SetDecodingConvention(HOADecodingConvention convention) override;
    void computeReencodingMatrix() override;
};

}  // namespace Lume
