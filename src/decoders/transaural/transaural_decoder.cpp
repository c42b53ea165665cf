#include "decoders/transaural/transaural_decoder.h"

#include <algorithm>
#include <cmath>

namespace Lume {

TransauralDecoder::TransauralDecoder(unsigned int /*numberOfInputs*/, unsigned int /*numberOfOutputs*/) {
    initDecoder(2, 2);
}

void TransauralDecoder::SetLoudspeakerPositions(CartesianVector const* positions) {
    constexpr float tolerance = 0.05f;  // [m]
    const auto [left, right] =
        std::minmax(positions[0], positions[1], [](auto const& a, auto const& b) { return a.x < b.x; });
    leftSpeaker = left;
    rightSpeaker = right;
    speakersSetupSymmetric = std::abs(left.x + right.x) <= tolerance && std::abs(left.y - right.y) <= tolerance &&
                             std::abs(left.z - right.z) <= tolerance;
    updateFiltersCoefficients();
}

void TransauralDecoder::GetSpeakersPositions(CartesianVector& left, CartesianVector& right) const {
    left = leftSpeaker;
    right = rightSpeaker;
}

void TransauralDecoder::SetListenerHeadRadius(float metres) {
    // Not a number becomes the lower limit.
    const float radius = std::min(std::max(0.01f, metres), 0.25f);
    leftEar = {-radius, 0.0f, 0.0f};
    rightEar = {radius, 0.0f, 0.0f};
}

bool TransauralDecoder::canUse(HrtfHeaderInfos const& infos) const {
    return infos.numChannels == getExpectedNumberOfFiltersInHrtfFiles() &&
           infos.hrtfType == getExpectedHrtfTypeInHrtfFiles() && CanProcessThisTypeOfFilter(infos.filterType);
}

}  // namespace Lume
