#pragma once

#include "decoders/ambisonic/hoa_decoder.h"

namespace Lume {

/// Ambisonic decoder for a ring of loudspeakers: 2 order + 1 channels of circular harmonics.
class HOA2DDecoder : public HOADecoder {
public:
    /// @param numInputs  2 order + 1, at least 3
    HOA2DDecoder(unsigned int numInputs, unsigned int numOutputs, HOADecoderMethod method = pseudoinverse,
                 HOADecoderType type = basic, HOADecodingConvention convention = N2D);

    /// A NullDecoder for a number of inputs that is no whole order from 1 on.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    using HOADecoder::SetDecodingConvention;
    /// SN2D and N2D are stored, others aren't; the matrix is computed anew in any case.
    void SetDecodingConvention(HOADecodingConvention convention) override;
    void computeReencodingMatrix() override;
};

}  // namespace Lume
