#include "filters/four_allpass_heads.h"

#include "dsp/denormals.h"

namespace Lume {

void ProcessFourDelays(orvandsp::PerLane<DelayJob> const& jobs, std::size_t numJobs, int count) {
    orvandsp::FlushDenormals();
    for (std::size_t i = 0; i < numJobs; ++i) jobs[i].delay->tapIn(jobs[i].input, count, 0);
    const auto find = [](DelayJob const& job) { return job.delay->FindAllpassHead(job.delay->delayRamp); };
    if (auto heads = FourAllpassHeads::From({find(jobs[0]), find(jobs[1]), find(jobs[2]), find(jobs[3])}))
        heads->Read({jobs[0].output, jobs[1].output, jobs[2].output, jobs[3].output}, count, orvandsp::PassThrough());
    else
        for (std::size_t i = 0; i < numJobs; ++i) jobs[i].delay->ReadBuiltIn(jobs[i].output, count);
    for (std::size_t i = 0; i < numJobs; ++i) jobs[i].delay->AdvanceWritePosition(count);
}

}  // namespace Lume
