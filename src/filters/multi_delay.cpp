#include "filters/multi_delay.h"

#include <algorithm>

#include "dsp/batch.h"
#include "filters/delay_batch.h"

namespace Lume {

MultiDelay::MultiDelay(unsigned int numDelays, float maxDelay) : Bank(numDelays) {
    for (auto& delay : filters) delay = std::make_unique<Delay>(maxDelay, Delay::linear);
}

void MultiDelay::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    const auto process = [numSamples](auto jobs) { ProcessDelays(jobs, static_cast<int>(numSamples)); };
    orvandsp::Batch<DelayJob, decltype(process)> jobs(process);
    ForActive(outputs, numSamples, activeInputs, [&](std::size_t i) {
        jobs.Add({filters[i].get(), outputs[i], inputs[i]});
    });
    jobs.Finish();
}

bool MultiDelay::FindHeads(orvandsp::kernels::AllpassHead* heads, unsigned long numSamples) noexcept {
    return std::ranges::all_of(filters, [&heads, numSamples](auto const& delay) {
        const auto head = delay->FindBuiltInHead(static_cast<int>(numSamples));
        // Field by field: a copy of the whole would be read wider than it was written just before, and wait for that.
        if (head) *heads++ = {head->ring, head->size, head->position, head->state, head->first};
        return head.has_value();
    });
}

void MultiDelay::WriteBlock(float** inputs, unsigned long numSamples) {
    for (auto const& delay : filters) delay->tapIn(*inputs++, static_cast<int>(numSamples), 0);
}

void MultiDelay::FinishBlock(unsigned long numSamples) noexcept {
    for (auto const& delay : filters) {
        delay->AdvanceWritePosition(static_cast<int>(numSamples));
        delay->ExpectBlock(static_cast<int>(numSamples), 0);
    }
}

void MultiDelay::SetDelays(float* ms) {
    for (unsigned int i = 0; i < GetNumDelays(); ++i) SetDelay(i, ms[i]);
}

void MultiDelay::GetDelays(float* ms) const {
    for (unsigned int i = 0; i < GetNumDelays(); ++i) ms[i] = filters[i]->GetDelay();
}

float MultiDelay::GetMaxDelay() const {
    float greatest = 0.0f;
    for (auto const& delay : filters) greatest = std::max(greatest, delay->GetMaxDelay());
    return greatest;
}

}  // namespace Lume
