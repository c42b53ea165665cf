#include "filters/multi_delay.h"

#include <algorithm>

#include "dsp/denormals.h"
#include "filters/four_allpass_heads.h"

namespace Lume {

MultiDelay::MultiDelay(unsigned int numDelays, float maxDelay) {
    numInputs = numDelays;
    numOutputs = numDelays;
    delays.reserve(numDelays);
    for (unsigned int i = 0; i < numDelays; ++i) delays.push_back(std::make_unique<Delay>(maxDelay, Delay::linear));
}

void MultiDelay::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    orvandsp::FlushDenormals();
    const auto count = static_cast<int>(numSamples);
    struct Job {
        Delay* delay;
        float* output;
    };
    const auto read = [count](orvandsp::PerLane<Job> const& jobs, std::size_t numJobs) {
        const auto find = [](Job const& job) { return job.delay->FindAllpassHead(job.delay->delayRamp); };
        if (auto heads = FourAllpassHeads::From({find(jobs[0]), find(jobs[1]), find(jobs[2]), find(jobs[3])}))
            heads->Read({jobs[0].output, jobs[1].output, jobs[2].output, jobs[3].output}, count,
                        orvandsp::PassThrough());
        else
            for (std::size_t i = 0; i < numJobs; ++i) jobs[i].delay->ReadBuiltIn(jobs[i].output, count);
        for (std::size_t i = 0; i < numJobs; ++i) jobs[i].delay->AdvanceWritePosition(count);
    };
    orvandsp::InFours<Job, decltype(read)> jobs(read);
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        if (activeInputs[i] == 0) {
            std::fill_n(outputs[i], numSamples, 0.0f);
            continue;
        }
        delays[i]->tapIn(inputs[i], count, 0);
        jobs.Add({delays[i].get(), outputs[i]});
    }
    jobs.Finish();
}

void MultiDelay::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (auto& delay : delays) delay->SetSamplerate(newSamplerate);
}

void MultiDelay::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    for (auto& delay : delays) delay->SetMaxBlockSize(blockSize);
}

void MultiDelay::Clear() {
    for (auto& delay : delays) delay->Clear();
}

void MultiDelay::SetDelay(unsigned int index, float ms) {
    delays[index]->SetDelay(ms, false);
}

void MultiDelay::SetDelays(float* ms) {
    for (unsigned int i = 0; i < GetNumDelays(); ++i) SetDelay(i, ms[i]);
}

void MultiDelay::GetDelays(float* ms) const {
    for (unsigned int i = 0; i < GetNumDelays(); ++i) ms[i] = delays[i]->GetDelay();
}

void MultiDelay::SetMaxDelay(float ms) {
    for (auto& delay : delays) delay->SetMaxDelay(ms);
}

void MultiDelay::SetMaxDelay(unsigned int index, float ms) {
    delays[index]->SetMaxDelay(ms);
}

float MultiDelay::GetMaxDelay() const {
    float greatest = 0.0f;
    for (auto const& delay : delays) greatest = std::max(greatest, delay->GetMaxDelay());
    return greatest;
}

void MultiDelay::SetInterpolationMode(Delay::InterpolationMode newMode) {
    for (auto& delay : delays) delay->SetInterpolationMode(newMode);
}

void MultiDelay::SetInterpolationTime(float ms) {
    for (auto& delay : delays) delay->SetInterpolationTime(ms);
}

}  // namespace Lume
