#pragma once

#include <span>

#include "filters/hl_shelf.h"
#include "kernels/kernels.h"

namespace Lume {

/// A channel to be filtered by a shelf of its own; output may be input. It holds until the shelf is designed anew.
struct ShelfJob : orvandsp::kernels::ShelfJob {
    ShelfJob() = default;
    ShelfJob(HLShelf* filter, float* to, float const* from)
        : orvandsp::kernels::ShelfJob{filter->GetKernelShelf(), from, to} {}
};

/// Filters several channels: what Process of each shelf does. Real-time safe.
/// @param jobs  at most orvandsp::kernels::maxLanes
void FilterShelves(std::span<ShelfJob const> jobs, unsigned long numSamples) noexcept;

}  // namespace Lume
