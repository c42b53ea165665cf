#include "dsp/vector_statistics.h"

#include <cstdlib>
#include <numbers>

namespace orvandsp {

namespace {

/// One sample of the standard normal distribution.
double NormalSample() {
    constexpr double range = static_cast<double>(RAND_MAX) + 1.0;
    // Above 0, so that the logarithm is finite.
    const double first = (std::rand() + 1.0) / range;
    const double second = std::rand() / range;
    return std::sqrt(-2.0 * std::log(first)) * std::cos(2.0 * std::numbers::pi * second);
}

}  // namespace

void NormalRandomDistribution(float* out, float mean, float standardDeviation, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i)
        out[i] =
            static_cast<float>(static_cast<double>(mean) + static_cast<double>(standardDeviation) * NormalSample());
}

void NormalRandomDistribution(double* out, double mean, double standardDeviation, unsigned long n) {
    for (unsigned long i = 0; i < n; ++i) out[i] = mean + standardDeviation * NormalSample();
}

}  // namespace orvandsp
