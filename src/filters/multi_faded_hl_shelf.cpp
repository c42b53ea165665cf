#include "filters/multi_faded_hl_shelf.h"

#include <algorithm>

#include "dsp/batch.h"
#include "filters/shelf_batch.h"

namespace Lume {

MultiFadedHLShelf::MultiFadedHLShelf(unsigned int numChannels) : Bank(numChannels) {
    MultiFadedHLShelf::SetSamplerate(samplerate);
    SetCrossFadeTime(FadedHLShelf::DefaultHLShelfCrossFadeTime);
}

void MultiFadedHLShelf::SetParameters(HLShelfParameters const& parameters) {
    for (FadedHLShelf& shelf : filters) shelf.SetParameters(parameters);
}

void MultiFadedHLShelf::SetAll(float gain, float gainLow, float gainMed, float gainHigh, float freqLow,
                               float freqHigh) {
    const float set[] = {gain, gainLow, gainMed, gainHigh, freqLow, freqHigh};
    for (FadedHLShelf& shelf : filters) shelf.SetCoefficients(set, false);
}

void MultiFadedHLShelf::ResetToDefaults() {
    const HLShelfParameters defaults;
    SetAll(defaults.gain, defaults.gainLow, defaults.gainMed, defaults.gainHigh, defaults.freqLow, defaults.freqHigh);
}

template <typename Jobs>
void MultiFadedHLShelf::BeginBlock(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs,
                                   Jobs& jobs) {
    ForActive(outputs, numSamples, activeInputs,
              [&](std::size_t i) { filters[i].BeginBlock(outputs[i], inputs[i], numSamples, jobs); });
}

void MultiFadedHLShelf::FinishBlock(float** outputs, unsigned long numSamples, short const* activeInputs) {
    orvandsp::FadeGains gains;
    for (std::size_t i = 0; i < filters.size(); ++i)
        if (activeInputs[i] != 0) filters[i].FinishBlock(outputs[i], numSamples, gains);
}

void MultiFadedHLShelf::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    const auto filter = [numSamples](auto jobs) { FilterShelves(jobs, numSamples); };
    orvandsp::Batch<ShelfJob, decltype(filter)> jobs(filter);
    BeginBlock(outputs, inputs, numSamples, activeInputs, jobs);
    jobs.Finish();
    FinishBlock(outputs, numSamples, activeInputs);
}

void MultiFadedHLShelf::ProcessBoth(MultiFadedHLShelf& a, float** channelsOfA, MultiFadedHLShelf& b,
                                    float** channelsOfB, unsigned long numSamples) {
    const auto filter = [numSamples](auto jobs) { FilterShelves(jobs, numSamples); };
    orvandsp::Batch<ShelfJob, decltype(filter)> jobs(filter);
    a.BeginBlock(channelsOfA, channelsOfA, numSamples, orvandsp::allActiveInputs, jobs);
    b.BeginBlock(channelsOfB, channelsOfB, numSamples, orvandsp::allActiveInputs, jobs);
    jobs.Finish();
    a.FinishBlock(channelsOfA, numSamples, orvandsp::allActiveInputs);
    b.FinishBlock(channelsOfB, numSamples, orvandsp::allActiveInputs);
}

bool MultiFadedHLShelf::FindFilters(orvandsp::kernels::Shelf* found) noexcept {
    return std::ranges::all_of(filters, [&found](FadedHLShelf& shelf) {
        HLShelf* const alone = shelf.FindOnly();
        if (alone != nullptr) *found++ = alone->GetKernelShelf();
        return alone != nullptr;
    });
}

}  // namespace Lume
