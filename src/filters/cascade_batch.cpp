#include "filters/cascade_batch.h"

#include <algorithm>

#include "dsp/denormals.h"

namespace Lume {

namespace kernels = orvandsp::kernels;

void FilterCascades(std::span<CascadeJob const> jobs, unsigned long numSamples) {
    const std::size_t numStages = jobs[0].cascade->GetNumStages();
    const bool alike = std::ranges::all_of(jobs, [numStages](CascadeJob const& job) {
        return job.cascade->GetNumStages() == numStages && job.cascade->IsInSeries();
    });
    if (!alike || numStages == 0) {
        for (CascadeJob const& job : jobs) job.cascade->Process(job.output, job.input, numSamples);
        return;
    }
    orvandsp::FlushDenormals();
    for (std::size_t first = 0; first < numStages; first += kernels::maxCascadeStages) {
        kernels::CascadeJob lanes[kernels::maxLanes];
        for (std::size_t i = 0; i < jobs.size(); ++i)
            lanes[i] = {jobs[i].cascade->GetKernelForm(first), first == 0 ? jobs[i].input : jobs[i].output,
                        jobs[i].output};
        kernels::Get().cascades(lanes, jobs.size(), std::min(numStages - first, kernels::maxCascadeStages), numSamples);
    }
}

}  // namespace Lume
