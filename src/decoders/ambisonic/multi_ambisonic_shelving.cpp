#include "decoders/ambisonic/multi_ambisonic_shelving.h"

namespace Lume {

MultiAmbisonicShelving::MultiAmbisonicShelving(unsigned int numChannels) : channels(numChannels) {
    numInputs = numChannels;
    numOutputs = 2 * numChannels;
}

void MultiAmbisonicShelving::Process(float** low, float** high, float** inputs, unsigned long numSamples) noexcept {
    for (std::size_t i = 0; i < channels.size(); ++i) channels[i].Process(inputs[i], low[i], high[i], numSamples);
}

void MultiAmbisonicShelving::Process(float** outputs, float** inputs, unsigned long numSamples,
                                     short const* /*activeInputs*/) {
    Process(outputs, outputs + channels.size(), inputs, numSamples);
}

void MultiAmbisonicShelving::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (AmbisonicShelving& channel : channels) channel.SetSamplerate(newSamplerate);
}

void MultiAmbisonicShelving::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    for (AmbisonicShelving& channel : channels) channel.SetMaxBlockSize(blockSize);
}

}  // namespace Lume
