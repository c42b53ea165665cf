#pragma once

#include <span>
#include <vector>

#include "measure/decay.h"

namespace orvanmeasure {

/// The greatest magnitude of the normalised cross-correlation of two signals of equal length within +-1 ms, after
/// ISO 3382-1, annex B: of two ears it tells how alike they are.
Figure InterauralCorrelation(std::span<double const> left, std::span<double const> right, double sampleRate);

/// The correlation coefficient of two signals of equal length without a shift, -1 to 1; 0 if one is silent.
double Correlation(std::span<float const> a, std::span<float const> b);

}  // namespace orvanmeasure
