#include "geometry/azimuth.h"

namespace Lume {

float Wrap(float value, float period) {
    // Addition comes first: a tiny negative value rounds up to the period itself, which the second loop takes off.
    while (value < 0.0f) {
        const float next = value + period;
        if (next == value) return 0.0f;
        value = next;
    }
    while (value >= period) {
        const float next = value - period;
        if (next == value) return 0.0f;
        value = next;
    }
    return value;
}

float SwapAzimuthConvention(float degrees) {
    return Wrap(270.0f - degrees, 360.0f) - 180.0f;
}

}  // namespace Lume
