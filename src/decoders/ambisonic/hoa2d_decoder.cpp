#include "decoders/ambisonic/hoa2d_decoder.h"

#include "decoders/null_decoder.h"
#include "harmonics/ambisonic_encoding.h"

namespace Lume {

HOA2DDecoder::HOA2DDecoder(unsigned int numberOfInputs, unsigned int numberOfOutputs, HOADecoderMethod method,
                           HOADecoderType type, HOADecodingConvention convention)
    : HOADecoder(numberOfInputs, numberOfOutputs, method, type, convention) {
    order = (numberOfInputs - 1) / 2;
    dimensionFlag = 0;
    forceUpdate();
}

Decoder* HOA2DDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    if (numberOfInputs < 3 || numberOfInputs % 2 == 0 || numberOfInputs > orvandsp::MaxNumChannels ||
        numberOfOutputs > orvandsp::MaxNumChannels)
        return NullDecoder::Create(numberOfInputs, numberOfOutputs);
    return new HOA2DDecoder(numberOfInputs, numberOfOutputs);
}

void HOA2DDecoder::SetDecodingConvention(HOADecodingConvention convention) {
    if (convention == SN2D || convention == N2D) decodingConvention = convention;
    forceUpdate();
}

void HOA2DDecoder::computeReencodingMatrix() {
    const auto normalization = decodingConvention == SN2D ? SchmidtSeminormalized2D : FullyNormalized2D;
    std::vector<std::vector<double>> encodings;
    for (CartesianVector const& position : speakerPositions)
        encodings.push_back(AmbisonicEncodingVector2D(order, position, normalization, sorting));
    ComputeMatrices(encodings);
    AmbisonicInPhaseOptimizedGains2D(order, inPhaseGains);
    AmbisonicMaxReOptimizedGains2D(order, maxReGains);
}

}  // namespace Lume
