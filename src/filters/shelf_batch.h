#pragma once

#include <span>

namespace Lume {

class HLShelf;

/// A channel to be filtered by a shelf of its own; output may be input.
struct ShelfJob {
    HLShelf* shelf;
    float* output;
    float const* input;
};

/// Filters several channels: what Process of each shelf does. Real-time safe.
/// @param jobs  at most orvandsp::kernels::maxLanes
void FilterShelves(std::span<ShelfJob const> jobs, unsigned long numSamples);

}  // namespace Lume
