#include "filters/multi_delay.h"

#include <algorithm>

#include "dsp/batch.h"
#include "filters/delay_batch.h"

namespace Lume {

MultiDelay::MultiDelay(unsigned int numDelays, float maxDelay) {
    numInputs = numDelays;
    numOutputs = numDelays;
    delays.reserve(numDelays);
    for (unsigned int i = 0; i < numDelays; ++i) delays.push_back(std::make_unique<Delay>(maxDelay, Delay::linear));
}

void MultiDelay::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    const auto process = [numSamples](auto jobs) { ProcessDelays(jobs, static_cast<int>(numSamples)); };
    orvandsp::Batch<DelayJob, decltype(process)> jobs(process);
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        if (activeInputs[i] != 0)
            jobs.Add({delays[i].get(), outputs[i], inputs[i]});
        else
            std::fill_n(outputs[i], numSamples, 0.0f);
    }
    jobs.Finish();
}

bool MultiDelay::FindHeads(orvandsp::kernels::AllpassHead* heads) noexcept {
    return std::ranges::all_of(delays, [&heads](auto const& delay) {
        const auto head = delay->FindBuiltInHead();
        if (head) *heads++ = *head;
        return head.has_value();
    });
}

void MultiDelay::WriteBlock(float** inputs, unsigned long numSamples) {
    for (auto const& delay : delays) delay->tapIn(*inputs++, static_cast<int>(numSamples), 0);
}

void MultiDelay::FinishBlock(unsigned long numSamples) noexcept {
    for (auto const& delay : delays) {
        delay->AdvanceWritePosition(static_cast<int>(numSamples));
        delay->ExpectBlock(static_cast<int>(numSamples), 0);
    }
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
