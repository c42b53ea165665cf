#include "pan/stereo/stereo_xy_panning.h"

#include <cmath>

#include "pan/stereo/stereo_law.h"

namespace Lume {

StereoXYPanning::StereoXYPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs) {}

void StereoXYPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    constexpr float scale = 0.41421f;  // power 1 straight ahead, nearly: tan(pi / 8)
    const float t = ListenerAzimuthRad(position);
    const float q = Directivity(position);
    gains[0] = (std::sin(0.7853982f - t) * q + 1.0f) * scale;
    gains[1] = scale * (1.0f + q * std::sin(0.7853982f + t));
}

}  // namespace Lume
