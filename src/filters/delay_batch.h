#pragma once

#include <span>

#include "filters/delay.h"

namespace Lume {

/// A channel to be delayed by a line of its own; output may be input.
struct DelayJob {
    Delay* delay;
    float* output;
    float* input;
};

/// Delays several channels: what Process of each line does. Real-time safe.
/// @param jobs  at most orvandsp::kernels::maxLanes
void ProcessDelays(std::span<DelayJob const> jobs, int count) noexcept;

}  // namespace Lume
