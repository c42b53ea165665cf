#include "filters/shelf_batch.h"

#include "dsp/denormals.h"
#include "filters/hl_shelf.h"
#include "kernels/kernels.h"

namespace Lume {

void FilterShelves(std::span<ShelfJob const> jobs, unsigned long numSamples) {
    namespace kernels = orvandsp::kernels;
    orvandsp::FlushDenormals();
    kernels::ShelfJob lanes[kernels::maxLanes];
    for (std::size_t i = 0; i < jobs.size(); ++i)
        lanes[i] = {jobs[i].shelf->GetKernelShelf(), jobs[i].input, jobs[i].output};
    kernels::Get().shelves(lanes, jobs.size(), numSamples);
}

}  // namespace Lume
