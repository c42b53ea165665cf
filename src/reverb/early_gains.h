#pragma once

#include <vector>

#include "dsp/repeatable_random.h"

namespace Lume {

/// Computes the gain of each early tap: a temporal envelope, random-looking signs, and from nine taps on a small random
/// spread and a sparser pattern when the taps lie close together.
///
/// Control side only. From nine taps on it draws random numbers, so that two calls differ a little.
/// @param gains      output, resized to numDelays
/// @param numDelays  number of taps, at most 64
/// @param shape      0 (only the first tap) through 0.5 (all alike) to 1 (only the last tap); clamped
/// @param length     time from the first to the last tap [ms]
/// @param normalize  whether thinning keeps the level
/// @param random     where to draw from; null: the C library's rand()
void GetRecommendedEarlyGains(std::vector<float>& gains, unsigned int numDelays, float shape, float length,
                              bool normalize, orvandsp::RepeatableRandom* random = nullptr);

}  // namespace Lume
