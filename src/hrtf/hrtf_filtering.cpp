#include "hrtf/hrtf_filtering.h"

#include <algorithm>

#include "dsp/batch.h"
#include "dsp/denormals.h"

namespace Lume {

namespace kernels = orvandsp::kernels;

HrtfFiltering::HrtfFiltering(HRTFFilterType type, bool needed) : filterType(type), needToProcessITD(needed) {
    if (type == biquadFilters) {
        PrepareBiquads();
        biquads.SetCrossFadeTime(DefaultCrossFadeTime);
    } else if (type == firFilter) {
        PrepareFir();
        fir.SetCrossFadeTime(DefaultCrossFadeTime);
    }
    Configure(samplerate, buffersize, true);
}

void HrtfFiltering::PrepareBiquads() {
    biquads.SetNumStages(numStages);
    delay.SetInterpolationMode(DefaultInterpolationModeForDelayLines);
    delay.SetInterpolationTime(DefaultInterpolationTimeForDelayLines);
}

void HrtfFiltering::SetFilterType(HRTFFilterType newType) {
    if (newType == filterType) return;
    filterType = newType;
    if (newType == biquadFilters)
        PrepareBiquads();
    else if (newType == firFilter)
        PrepareFir();
    Configure(samplerate, buffersize, true);
}

void HrtfFiltering::SetNumCoefficients(unsigned int n) {
    const unsigned int numBehindFirst = std::max(n, 1u) - 1;
    if (filterType == biquadFilters) {
        numStages = numBehindFirst >> 2;
        biquads.SetNumStages(numStages);
    } else if (filterType == firFilter) {
        firOrder = numBehindFirst;
        // An order one higher than the set needs: its last tap stays 0, and the length of the transform follows the
        // order (kept: quirks.md 6).
        fir.SetOrder(n);
    }
}

unsigned int HrtfFiltering::GetNumCoefficients() const {
    if (filterType == biquadFilters) return biquads.GetNumCoefficients();
    if (filterType == firFilter) return fir.GetNumCoefficients();
    return 0;
}

void HrtfFiltering::GetCoefficients(std::vector<float>& result) const {
    result.resize(GetNumCoefficients());
    if (filterType == biquadFilters)
        biquads.GetCoefficients(result);
    else if (filterType == firFilter)
        fir.GetCoefficients(result);
}

void HrtfFiltering::SetCoefficients(std::span<float const> coefficients, bool hold) {
    paddedSet.assign(GetNumCoefficients(), 0.0f);
    std::copy_n(coefficients.begin(), std::min(coefficients.size(), paddedSet.size()), paddedSet.begin());
    if (filterType == biquadFilters)
        biquads.SetCoefficients(paddedSet.data(), hold);
    else if (filterType == firFilter)
        fir.SetCoefficients(paddedSet.data(), hold);
}

void HrtfFiltering::SetCoefficients(float const* coefficients, bool hold) {
    if (filterType == biquadFilters)
        SetCoefficients(std::span(coefficients, 4ul * numStages + 1), hold);
    else if (filterType == firFilter)
        SetCoefficients(std::span(coefficients, firOrder + 1ul), hold);
}

void HrtfFiltering::SetDelay(float milliseconds, bool immediately) {
    if (filterType == biquadFilters) delay.SetDelay(milliseconds, immediately);
}

void HrtfFiltering::SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation) {
    if (filterType != firFilter) return;
    fir.SetImplementationMethod(implementation);
    // The direct form forgets the block size; without it the first block would have to make room for the transform.
    fir.SetMaxBlockSize(buffersize);
}

void HrtfFiltering::SetCrossFadeTime(float milliseconds) {
    if (filterType == biquadFilters)
        biquads.SetCrossFadeTime(milliseconds);
    else if (filterType == firFilter)
        fir.SetCrossFadeTime(milliseconds);
}

void HrtfFiltering::SetInterpolationTime(float milliseconds) {
    if (filterType == biquadFilters) delay.SetInterpolationTime(milliseconds);
}

void HrtfFiltering::Process(float* output, float* input, unsigned long numSamples) {
    switch (filterType) {
        case biquadFilters:
            if (needToProcessITD) {
                delay.Process(delayedInput.data(), input, static_cast<int>(numSamples));
                input = delayedInput.data();
            }
            biquads.ProcessBlock(output, input, numSamples, false);
            return;
        case firFilter:
            fir.ProcessBlock(output, input, numSamples, false);
            return;
        case noFilter:
            std::copy_n(input, output == input ? 0 : numSamples, output);
            return;
    }
    std::fill_n(output, numSamples, 0.0f);
}

/// Whether a kernel can read and filter a block, which then begins.
bool HrtfFiltering::SuitsKernel() {
    if (filterType != biquadFilters || !needToProcessITD || !delay.IsAllpass() || numStages == 0 ||
        numStages > kernels::maxCascadeStages)
        return false;
    biquads.update();
    const auto fade = biquads.FindFade();
    return biquads.Incoming().IsInSeries() && (!fade || fade->outgoing->IsInSeries());
}

void HrtfFiltering::ProcessSeveral(std::span<Job const> jobs, unsigned long numSamples) {
    if (jobs.empty()) return;
    orvandsp::FlushDenormals();
    const unsigned int alike = jobs.front().way->numStages;
    const auto runSteady = [=](std::span<kernels::EarJob const> ears) {
        kernels::Get().ears(ears.data(), ears.size(), alike, numSamples, false);
    };
    const auto runFading = [=](std::span<kernels::EarJob const> ears) {
        kernels::Get().ears(ears.data(), ears.size(), alike, numSamples, true);
    };
    orvandsp::Batch<kernels::EarJob, decltype(runSteady)> steady(runSteady);
    orvandsp::Batch<kernels::EarJob, decltype(runFading)> fading(runFading);
    for (auto const& [way, output, input] : jobs) {
        if (way->numStages != alike || !way->SuitsKernel()) {
            way->Process(output, input, numSamples);
            continue;
        }
        Delay& delay = way->delay;
        const int count = static_cast<int>(numSamples);
        delay.tapIn(input, count, 0);
        const auto make = [way = way, output = output, count](kernels::EarJob& job) {
            way->delay.GetGlidingHead(job.head, count);
            job.cascade = way->biquads.Incoming().GetKernelForm(0);
            job.output = output;
        };
        if (const auto fade = way->biquads.FindFade())
            fading.AddNew([&](kernels::EarJob& job) {
                make(job);
                job.former = fade->outgoing->GetKernelForm(0);
                job.gain = fade->gain;
                job.formerGain = fade->outgoingGain;
                job.step = fade->step;
                job.formerStep = fade->outgoingStep;
                job.remaining = fade->remaining;
            });
        else
            steady.AddNew(make);
        delay.AdvanceWritePosition(count);
        delay.ExpectBlock(count, 0);
        way->biquads.FinishBlock(numSamples);
    }
    steady.Finish();
    fading.Finish();
}

void HrtfFiltering::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    if (activeInputs[0] != 0)
        Process(outputs[0], inputs[0], numSamples);
    else
        std::fill_n(outputs[0], numSamples, 0.0f);
}

void HrtfFiltering::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    if (filterType == biquadFilters) {
        delay.SetSamplerate(newSamplerate);
        biquads.SetSamplerate(newSamplerate);
    } else if (filterType == firFilter) {
        fir.SetSamplerate(newSamplerate);
    }
}

void HrtfFiltering::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    delayedInput.resize(blockSize);
    if (filterType == biquadFilters) {
        delay.SetMaxBlockSize(blockSize);
        biquads.SetMaxBlockSize(blockSize);
    } else if (filterType == firFilter) {
        fir.SetMaxBlockSize(blockSize);
    }
}

void HrtfFiltering::Clear() {
    if (filterType == biquadFilters) {
        delay.Clear();
        biquads.Clear();
    } else if (filterType == firFilter) {
        fir.Clear();
    }
}

std::span<float const> EarCoefficients(HrtfPoint const& point, unsigned int ear) {
    const std::span<float const> all = point.coefficients;
    const std::size_t begin = std::min(static_cast<std::size_t>(ear) * point.numCoefficients, all.size());
    return all.subspan(begin, std::min<std::size_t>(point.numCoefficients, all.size() - begin));
}

}  // namespace Lume
