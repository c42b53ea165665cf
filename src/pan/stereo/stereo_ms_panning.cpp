#include "pan/stereo/stereo_ms_panning.h"

#include <cmath>

#include "pan/stereo/stereo_law.h"

namespace Lume {

StereoMSPanning::StereoMSPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs) {}

void StereoMSPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    const float a = std::atan2(position.y, position.x);
    const float q = Directivity(position);
    gains[0] = (std::sin(a) * q + 1.0f) * 0.5f;
    gains[1] = std::cos(a) * 0.5f * q;
}

}  // namespace Lume
