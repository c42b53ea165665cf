#include "reverb/cluster.h"

#include <algorithm>

namespace Lume {

Cluster::Cluster(unsigned int numChannels, float newSamplerate)
    : delays(std::make_unique<MultiDelay>(numChannels, Delay::DefaultDelayLineLength)),
      shuffle(numChannels),
      scratch(numChannels, 512) {
    samplerate = newSamplerate;
    numInputs = numChannels;
    numOutputs = numChannels;
    delays->Configure(samplerate, buffersize, true);
    delays->SetInterpolationMode(Delay::allpass);
    delays->SetInterpolationTime(DefaultDelayInterpolationTime);
    const auto last = static_cast<float>(std::max(numChannels, 2u) - 1);
    for (unsigned int i = 0; i < numChannels; ++i) SetDelay(i, 60.0f * static_cast<float>(i) / last + 20.0f);
}

Cluster* Cluster::Create(unsigned int numChannels, float samplerate) {
    return numChannels < 3 ? nullptr : new Cluster(numChannels, samplerate);
}

void Cluster::DeleteCluster(Cluster* cluster) {
    delete cluster;
}

void Cluster::Mix(float** mixed, float** inputs, unsigned long numSamples) {
    const auto length = static_cast<unsigned int>(numSamples);
    if (scratch.GetNumSamples() != length) scratch.Resize(numInputs, length);
    for (unsigned int i = 0; i < numInputs; ++i) {
        float* const cells = delays->FindCells(i, numSamples);
        mixed[i] = cells != nullptr ? cells : scratch.GetChannel(i);
    }
    shuffle.Process(mixed, inputs, numSamples, orvandsp::allActiveInputs);
}

void Cluster::Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) {
    float* mixed[orvandsp::MaxNumChannels];
    Mix(mixed, inputs, numSamples);
    delays->Process(outputs, mixed, numSamples, orvandsp::allActiveInputs);
}

void Cluster::WriteBlock(float** inputs, unsigned long numSamples) {
    float* mixed[orvandsp::MaxNumChannels];
    Mix(mixed, inputs, numSamples);
    delays->WriteBlock(mixed, numSamples);
}

void Cluster::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    delays->SetSamplerate(newSamplerate);
    shuffle.SetSamplerate(newSamplerate);
}

void Cluster::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    delays->SetMaxBlockSize(blockSize);
    shuffle.SetMaxBlockSize(blockSize);
    scratch.Resize(numInputs, blockSize);
}

void Cluster::Clear() {
    delays->Clear();
    scratch.Clear();
}

void Cluster::SetDelays(float const* ms) {
    for (unsigned int i = 0; i < numInputs; ++i) SetDelay(i, ms[i]);
}

}  // namespace Lume
