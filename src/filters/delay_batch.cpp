#include "filters/delay_batch.h"

#include "dsp/denormals.h"

namespace Lume {

namespace kernels = orvandsp::kernels;

void ProcessDelays(std::span<DelayJob const> jobs, int count) noexcept {
    orvandsp::FlushDenormals();
    for (DelayJob const& job : jobs) job.delay->tapIn(job.input, count, 0);
    kernels::HeadJob heads[kernels::maxLanes];
    kernels::GlideJob glides[kernels::maxLanes];
    std::size_t numHeads = 0, numGlides = 0;
    for (DelayJob const& job : jobs) {
        if (const auto head = job.delay->FindBuiltInHead(count))
            heads[numHeads++] = {*head, job.output};
        else if (job.delay->IsAllpass()) {
            job.delay->GetGlidingHead(glides[numGlides].head, count);
            glides[numGlides++].output = job.output;
        } else
            job.delay->ReadBuiltIn(job.output, count);
    }
    const auto length = static_cast<std::size_t>(count);
    if (numHeads > 0) kernels::Get().allpassHeads(heads, numHeads, length);
    if (numGlides > 0) kernels::Get().glides(glides, numGlides, length);
    for (DelayJob const& job : jobs) {
        job.delay->AdvanceWritePosition(count);
        job.delay->ExpectBlock(count, 0);
    }
}

}  // namespace Lume
