#include "pan/ambisonic/ambisonic_panning.h"

#include <algorithm>
#include <cmath>

namespace Lume {

void AmbisonicPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    const float a = std::atan2(position.y, position.x);
    const float r = position.radius();
    // Kept within the sine's range: the radius of a tiny vector is no longer exact.
    const float e = r > 0.0f ? std::asin(std::clamp(position.z / r, -1.0f, 1.0f)) : 0.0f;
    const float c = std::cos(e);
    if (numOutputs == 3) {
        constexpr float sqrt2div3 = 0.81649661f;
        gains[0] = std::sqrt(1.0f - 0.6666667f * c * c);
        gains[1] = std::cos(a) * c * sqrt2div3;
        gains[2] = c * std::sin(a) * sqrt2div3;
    } else if (numOutputs == 4) {
        gains[0] = 0.57735026f;
        gains[1] = std::cos(a) * c * 1.4142135f;
        gains[2] = c * std::sin(a) * 1.4142135f;
        gains[3] = std::sin(e) * 1.4142135f;
    }
}

}  // namespace Lume
