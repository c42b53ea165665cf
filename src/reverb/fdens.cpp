#include "reverb/fdens.h"

#include <algorithm>

namespace Lume {

float fdens(float sum, float minimum, unsigned int numDelays, float echoDensity) {
    const float m = 0.001f * minimum;
    const auto n = static_cast<float>(numDelays);
    const float upper = std::min(0.5f * m * (n + 1.0f) * n, sum);
    const float bound = (n * n * (n - 1.0f) / (echoDensity * 2000.0f) + m) * n;
    const float lower = std::max(1.5f * m * n, 0.25f * sum);
    return std::max(lower, std::min(upper, bound));
}

float fdens(float sum, float minimum, unsigned int numDelays, float echoDensity, float& minimumSum, float& maximumSum,
            float& densityBound, float& maximumDelay, float& resultEchoDensity) {
    const float m = 0.001f * minimum;
    const auto n = static_cast<float>(numDelays);
    resultEchoDensity = echoDensity * 1000.0f;
    minimumSum = 1.5f * m * n;
    maximumSum = 0.5f * m * (n + 1.0f) * n;
    densityBound = (n * n * (n - 1.0f) / (2.0f * resultEchoDensity) + m) * n;
    const float value = std::max(std::max(0.25f * sum, minimumSum), std::min(std::min(sum, maximumSum), densityBound));
    const float d = (2.0f * value / n - m) * 1000.0f;
    maximumDelay = d * 1000.0f;
    resultEchoDensity = n * n * (n - 1.0f) / (d - m) * 0.001f;
    return value;
}

}  // namespace Lume
