#pragma once

#include "dsp/four_channels.h"
#include "filters/biquad_cascade.h"

namespace Lume {

/// A channel to be filtered by a cascade of its own; output may be input.
struct CascadeJob {
    BiquadCascade* cascade;
    float* output;
    float* input;
};

/// Filters four channels: what Process of each cascade does. At once if they have the same number of stages. Real-time
/// safe.
/// @param numJobs  those behind repeat the last one
void FilterFourCascades(orvandsp::PerLane<CascadeJob> const& jobs, std::size_t numJobs, unsigned long numSamples);

}  // namespace Lume
