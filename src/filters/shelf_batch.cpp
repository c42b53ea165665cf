#include "filters/shelf_batch.h"

#include "dsp/denormals.h"

namespace Lume {

void FilterShelves(std::span<ShelfJob const> jobs, unsigned long numSamples) noexcept {
    static_assert(sizeof(ShelfJob) == sizeof(orvandsp::kernels::ShelfJob), "the kernel reads them in a row");
    orvandsp::FlushDenormals();
    orvandsp::kernels::Get().shelves(jobs.data(), jobs.size(), numSamples);
}

}  // namespace Lume
