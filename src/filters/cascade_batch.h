#pragma once

#include <span>

#include "filters/biquad_cascade.h"

namespace Lume {

/// A channel to be filtered by a cascade of its own; output may be input.
struct CascadeJob {
    BiquadCascade* cascade;
    float* output;
    float* input;
};

/// Filters several channels: what Process of each cascade does. At once if they have the same number of stages.
/// Real-time safe.
/// @param jobs  at most orvandsp::kernels::maxLanes
void FilterCascades(std::span<CascadeJob const> jobs, unsigned long numSamples);

}  // namespace Lume
