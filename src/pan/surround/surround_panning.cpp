#include "pan/surround/surround_panning.h"

#include <algorithm>
#include <cmath>

#include "geometry/azimuth.h"
#include "pan/surround/panr.h"

namespace Lume {

namespace {

float ListenerAzimuth(CartesianVector const& position) {
    return SwapAzimuthConvention(std::atan2(position.y, position.x) * RadiansToDegrees);
}

}  // namespace

SurroundPanning::SurroundPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs) {
    for (unsigned int i = 0; i < numInputs; ++i) SetSourcePosition(i, {0.0f, 1.0f, 0.0f}, false);
}

void SurroundPanning::SetLoudspeakerPositions(CartesianVector const* positions) {
    if (numOutputs == 3 || numOutputs == 4) {
        corners[0] = ListenerAzimuth(positions[0]);
        corners[1] = ListenerAzimuth(positions[numOutputs == 3 ? 1 : 2]);
    }
    forceUpdate(false);
}

void SurroundPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    if (numOutputs != 3 && numOutputs != 4) return;
    float x, y;
    panc(position, corners, x, y);
    // The law with one loudspeaker more: the two behind become one.
    float powers[5];
    if (numOutputs == 3)
        panr4(x, y, powers);
    else
        panr5(x, y, powers);
    const unsigned int last = numOutputs - 1;
    powers[last] = std::clamp(powers[last] + powers[last + 1], 0.0f, 1.0f);
    for (unsigned int j = 0; j < numOutputs; ++j) gains[j] = std::sqrt(powers[j]);
}

}  // namespace Lume
