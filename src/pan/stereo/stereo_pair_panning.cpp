#include "pan/stereo/stereo_pair_panning.h"

#include <algorithm>
#include <cmath>

#include "geometry/azimuth.h"
#include "pan/stereo/stereo_law.h"

namespace Lume {

StereoPairPanning::StereoPairPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs), halfAngleRad(30.0f * DegreesToRadians) {}

void StereoPairPanning::SetLoudspeakerPositions(CartesianVector const* positions) {
    const float left = std::atan2(positions[0].x, positions[0].y);
    const float right = std::atan2(positions[1].x, positions[1].y);
    middleRad = 0.5f * (left + right);
    halfAngleRad = std::clamp(0.5f * std::abs(right - left), DegreesToRadians, 89.0f * DegreesToRadians);
    forceUpdate(false);
}

void StereoPairPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    const float azimuth = std::atan2(position.x, std::abs(position.y)) * Directivity(position);
    const float angle = std::clamp(azimuth - middleRad, -halfAngleRad, halfAngleRad);
    const float ratio = std::tan(angle) / std::tan(halfAngleRad);  // (right - left) / (right + left)
    const float scale = 1.0f / std::sqrt(2.0f + 2.0f * ratio * ratio);
    gains[0] = scale * (1.0f - ratio);
    gains[1] = scale * (1.0f + ratio);
}

}  // namespace Lume
