#include "filters/four_shelves.h"

#include "dsp/denormals.h"
#include "filters/hl_shelf.h"

namespace Lume {

using orvandsp::PerLane;

FourShelves::FourShelves(PerLane<HLShelf*> const& shelves) {
    using One = ShelfRecursion<float>;
    const PerLane<One> ones = {shelves[0]->GetRecursion(), shelves[1]->GetRecursion(), shelves[2]->GetRecursion(),
                               shelves[3]->GetRecursion()};
    recursion = {.b0 = orvandsp::Gather(ones, &One::b0),
                 .b1 = orvandsp::Gather(ones, &One::b1),
                 .b2 = orvandsp::Gather(ones, &One::b2),
                 .a1 = orvandsp::Gather(ones, &One::a1),
                 .a2 = orvandsp::Gather(ones, &One::a2),
                 .x1 = orvandsp::Gather(ones, &One::x1),
                 .x2 = orvandsp::Gather(ones, &One::x2),
                 .y1 = orvandsp::Gather(ones, &One::y1),
                 .y2 = orvandsp::Gather(ones, &One::y2)};
    outputGain = orvandsp::Float4{shelves[0]->OutputGain(), shelves[1]->OutputGain(), shelves[2]->OutputGain(),
                                  shelves[3]->OutputGain()};
}

void FourShelves::GiveStateTo(PerLane<HLShelf*> const& shelves) const {
    for (std::size_t lane = 0; lane < orvandsp::numLanes; ++lane)
        shelves[lane]->KeepState(recursion.x1[lane], recursion.x2[lane], recursion.y1[lane], recursion.y2[lane]);
}

void FilterFourShelves(PerLane<ShelfJob> const& jobs, unsigned long numSamples) {
    orvandsp::FlushDenormals();
    const PerLane<HLShelf*> shelves = {jobs[0].shelf, jobs[1].shelf, jobs[2].shelf, jobs[3].shelf};
    orvandsp::FilterFourChannels({jobs[0].output, jobs[1].output, jobs[2].output, jobs[3].output},
                                 {jobs[0].input, jobs[1].input, jobs[2].input, jobs[3].input}, numSamples,
                                 FourShelves(shelves))
        .GiveStateTo(shelves);
}

}  // namespace Lume
