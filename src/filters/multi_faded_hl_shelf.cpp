#include "filters/multi_faded_hl_shelf.h"

#include <algorithm>

#include "dsp/batch.h"
#include "filters/shelf_batch.h"

namespace Lume {

MultiFadedHLShelf::MultiFadedHLShelf(unsigned int numChannels) {
    SetNumChannels(numChannels);
    MultiFadedHLShelf::SetSamplerate(samplerate);
    SetCrossFadeTime(FadedHLShelf::DefaultHLShelfCrossFadeTime);
}

void MultiFadedHLShelf::SetNumChannels(unsigned int numChannels) {
    numInputs = numChannels;
    numOutputs = numChannels;
    shelves.resize(numChannels);
}

void MultiFadedHLShelf::SetCrossFadeTime(float ms) {
    for (FadedHLShelf& shelf : shelves) shelf.SetCrossFadeTime(ms);
}

void MultiFadedHLShelf::SetParameters(HLShelfParameters const& parameters) {
    for (FadedHLShelf& shelf : shelves) shelf.SetParameters(parameters);
}

void MultiFadedHLShelf::SetAll(float gain, float gainLow, float gainMed, float gainHigh, float freqLow,
                               float freqHigh) {
    const float set[] = {gain, gainLow, gainMed, gainHigh, freqLow, freqHigh};
    for (FadedHLShelf& shelf : shelves) shelf.SetCoefficients(set, false);
}

void MultiFadedHLShelf::ResetToDefaults() {
    const HLShelfParameters defaults;
    SetAll(defaults.gain, defaults.gainLow, defaults.gainMed, defaults.gainHigh, defaults.freqLow, defaults.freqHigh);
}

template <typename Jobs>
void MultiFadedHLShelf::BeginBlock(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs,
                                   Jobs& jobs) {
    for (std::size_t i = 0; i < shelves.size(); ++i) {
        if (activeInputs[i] != 0)
            shelves[i].BeginBlock(outputs[i], inputs[i], numSamples, jobs);
        else
            std::fill_n(outputs[i], numSamples, 0.0f);
    }
}

void MultiFadedHLShelf::FinishBlock(float** outputs, unsigned long numSamples, short const* activeInputs) {
    orvandsp::FadeGains gains;
    for (std::size_t i = 0; i < shelves.size(); ++i)
        if (activeInputs[i] != 0) shelves[i].FinishBlock(outputs[i], numSamples, gains);
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

bool MultiFadedHLShelf::FindFilters(orvandsp::kernels::Shelf* filters) noexcept {
    return std::ranges::all_of(shelves, [&filters](FadedHLShelf& shelf) {
        HLShelf* const alone = shelf.FindOnly();
        if (alone != nullptr) *filters++ = alone->GetKernelShelf();
        return alone != nullptr;
    });
}

void MultiFadedHLShelf::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (FadedHLShelf& shelf : shelves) shelf.SetSamplerate(newSamplerate);
}

void MultiFadedHLShelf::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    for (FadedHLShelf& shelf : shelves) shelf.SetMaxBlockSize(blockSize);
}

void MultiFadedHLShelf::Clear() {
    for (FadedHLShelf& shelf : shelves) shelf.Clear();
}

}  // namespace Lume
