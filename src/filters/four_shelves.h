#pragma once

#include "dsp/four_channels.h"
#include "filters/shelf_recursion.h"

namespace Lume {

class HLShelf;

/// Four HLShelf side by side: takes over their taps and their audio memory, filters, and gives the memory back.
class FourShelves {
public:
    explicit FourShelves(orvandsp::PerLane<HLShelf*> const& shelves);

    /// What Process of each shelf makes of one sample.
    orvandsp::Float4 operator()(orvandsp::Float4 x) noexcept { return recursion(x) * outputGain; }

    /// @param shelves  those of the constructor
    void GiveStateTo(orvandsp::PerLane<HLShelf*> const& shelves) const;

private:
    ShelfRecursion<orvandsp::Float4> recursion;
    orvandsp::Float4 outputGain;
};

/// A channel to be filtered by a shelf of its own; output may be input.
struct ShelfJob {
    HLShelf* shelf;
    float* output;
    float const* input;
};

/// Filters four channels: what Process of each shelf does. A job may be there several times, as InFours repeats it.
/// Real-time safe.
void FilterFourShelves(orvandsp::PerLane<ShelfJob> const& jobs, unsigned long numSamples);

}  // namespace Lume
