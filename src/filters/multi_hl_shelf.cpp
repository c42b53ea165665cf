#include "filters/multi_hl_shelf.h"

#include "dsp/batch.h"
#include "filters/shelf_batch.h"

namespace Lume {

void MultiHLShelf::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    const auto filter = [numSamples](auto jobs) { FilterShelves(jobs, numSamples); };
    orvandsp::Batch<ShelfJob, decltype(filter)> jobs(filter);
    ForActive(outputs, numSamples, activeInputs, [&](std::size_t i) {
        jobs.Add({&filters[i], outputs[i], inputs[i]});
    });
    jobs.Finish();
}

void MultiHLShelf::SetParameters(HLShelfParameters const& parameters) {
    for (HLShelf& shelf : filters) shelf.SetParameters(parameters);
}

void MultiHLShelf::SetAll(float gain, float gainLow, float gainMed, float gainHigh, float freqLow, float freqHigh) {
    for (HLShelf& shelf : filters) shelf.SetAll(gain, gainLow, gainMed, gainHigh, freqLow, freqHigh);
}

void MultiHLShelf::ResetToDefaults() {
    const HLShelfParameters defaults;
    SetAll(defaults.gain, defaults.gainLow, defaults.gainMed, defaults.gainHigh, defaults.freqLow, defaults.freqHigh);
}

}  // namespace Lume
