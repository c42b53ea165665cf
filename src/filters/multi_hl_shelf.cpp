#include "filters/multi_hl_shelf.h"

#include <algorithm>

#include "dsp/batch.h"
#include "filters/shelf_batch.h"

namespace Lume {

MultiHLShelf::MultiHLShelf(unsigned int numChannels) {
    SetNumChannels(numChannels);
}

void MultiHLShelf::SetNumChannels(unsigned int numChannels) {
    numInputs = numChannels;
    numOutputs = numChannels;
    shelves.resize(numChannels);
}

void MultiHLShelf::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    const auto filter = [numSamples](auto jobs) { FilterShelves(jobs, numSamples); };
    orvandsp::Batch<ShelfJob, decltype(filter)> jobs(filter);
    for (std::size_t i = 0; i < shelves.size(); ++i) {
        if (activeInputs[i] != 0)
            jobs.Add({&shelves[i], outputs[i], inputs[i]});
        else
            std::fill_n(outputs[i], numSamples, 0.0f);
    }
    jobs.Finish();
}

void MultiHLShelf::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (HLShelf& shelf : shelves) shelf.SetSamplerate(newSamplerate);
}

void MultiHLShelf::Clear() {
    for (HLShelf& shelf : shelves) shelf.Clear();
}

void MultiHLShelf::SetParameters(HLShelfParameters const& parameters) {
    for (HLShelf& shelf : shelves) shelf.SetParameters(parameters);
}

void MultiHLShelf::SetAll(float gain, float gainLow, float gainMed, float gainHigh, float freqLow, float freqHigh) {
    for (HLShelf& shelf : shelves) shelf.SetAll(gain, gainLow, gainMed, gainHigh, freqLow, freqHigh);
}

void MultiHLShelf::ResetToDefaults() {
    const HLShelfParameters defaults;
    SetAll(defaults.gain, defaults.gainLow, defaults.gainMed, defaults.gainHigh, defaults.freqLow, defaults.freqHigh);
}

void MultiHLShelf::ClearTaps() {
    for (HLShelf& shelf : shelves) shelf.ClearTaps();
}

void MultiHLShelf::SetGaindB(float dB) {
    for (HLShelf& shelf : shelves) shelf.StoreGain(dB);
}

}  // namespace Lume
