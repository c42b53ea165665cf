#include "pan/binaural/head_shadow.h"

#include <cmath>

namespace Lume {

std::array<float, 4> HeadShadowCoefficients(float angle, float b) {
    const float alpha = 1.05f + 0.95f * std::cos(1.2f * angle);
    const float g = 1.0f / (1.0f + b);
    return {(b + alpha) * g, (b - alpha) * g, 1.0f, g * (b - 1.0f)};
}

float HeadShadowDelay(float angle, float radius) {
    const float size = std::abs(angle);
    if (size < 1.5707964f) return (1.0f - std::cos(angle)) * modelMsPerMetre * radius;
    if (size < 3.1415927f) return (size - 0.5707964f) * modelMsPerMetre * radius;
    return 0.0f;
}

}  // namespace Lume
