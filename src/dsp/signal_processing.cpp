#include "dsp/signal_processing.h"

#include <algorithm>
#include <cstring>

#include "dsp/denormals.h"

namespace orvandsp {

void SignalProcessing::Bypass(float** outputs, float** inputs, unsigned long numSamples) {
    const unsigned int numCopied = std::min(numInputs, numOutputs);
    // memmove: an output array may be the input array.
    for (unsigned int i = 0; i < numCopied; ++i) std::memmove(outputs[i], inputs[i], numSamples * sizeof(float));
    for (unsigned int i = numCopied; i < numOutputs; ++i) std::fill_n(outputs[i], numSamples, 0.0f);
}

void SignalProcessing::Mute(float** outputs, unsigned long numSamples) {
    for (unsigned int i = 0; i < numOutputs; ++i) std::fill_n(outputs[i], numSamples, 0.0f);
}

void SignalProcessing::Configure(float newSamplerate, unsigned int blockSize, bool force) {
    const bool otherRate = newSamplerate < samplerate || newSamplerate > samplerate;
    if (otherRate || blockSize != buffersize || force) {
        SetSamplerate(newSamplerate);
        SetMaxBlockSize(blockSize);
        Clear();
    }
    FlushDenormals();
}

}  // namespace orvandsp
