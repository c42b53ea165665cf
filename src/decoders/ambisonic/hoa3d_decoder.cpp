#include "decoders/ambisonic/hoa3d_decoder.h"

#include <cmath>

#include "decoders/null_decoder.h"
#include "harmonics/ambisonic_encoding.h"

namespace Lume {

namespace {

float OrderOf(unsigned int numInputs) {
    return std::sqrt(static_cast<float>(numInputs)) - 1.0f;
}

}  // namespace

HOA3DDecoder::HOA3DDecoder(unsigned int numberOfInputs, unsigned int numberOfOutputs, HOADecoderMethod method,
                           HOADecoderType type, HOADecodingConvention convention)
    : HOADecoder(numberOfInputs, numberOfOutputs, method, type, convention) {
    order = static_cast<unsigned int>(OrderOf(numberOfInputs));
    forceUpdate();
}

Decoder* HOA3DDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    const float order = OrderOf(numberOfInputs);
    if (!(order >= 1.0f) || order != std::trunc(order) || numberOfInputs > orvandsp::MaxNumChannels ||
        numberOfOutputs > orvandsp::MaxNumChannels)
        return NullDecoder::Create(numberOfInputs, numberOfOutputs);
    return new HOA3DDecoder(numberOfInputs, numberOfOutputs);
}

void HOA3DDecoder::SetDecodingConvention(HOADecodingConvention convention) {
    if (convention == SN3D || convention == N3D) decodingConvention = convention;
    forceUpdate();
}

void HOA3DDecoder::computeReencodingMatrix() {
    const auto normalization = decodingConvention == SN3D ? SchmidtSeminormalized3D : FullyNormalized3D;
    std::vector<std::vector<double>> encodings;
    for (CartesianVector const& position : speakerPositions)
        encodings.push_back(AmbisonicEncodingVector(order, position, normalization, sorting));
    ComputeMatrices(encodings);
    AmbisonicInPhaseOptimizedGains(order, inPhaseGains);
    AmbisonicMaxReOptimizedGains(order, maxReGains);
}

}  // namespace Lume
