#include "pan/amplitude_panning.h"

#include <algorithm>

#include "geometry/reach.h"

namespace Lume {

AmplitudePanning::AmplitudePanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : cycle(numberOfInputs, numberOfOutputs) {
    numInputs = numberOfInputs;
    numOutputs = numberOfOutputs;
    sourcePositions.resize(numInputs);
    cycle.SetLength(GainCycle::DefaultLengthSeconds * samplerate);
}

void AmplitudePanning::GetGains(float* gains) const {
    std::copy_n(cycle.requestedGains.begin(), static_cast<std::size_t>(numInputs) * numOutputs, gains);
}

void AmplitudePanning::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    cycle.Process(outputs, inputs, numSamples, activeInputs, numInputs, numOutputs);
}

void AmplitudePanning::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                     short const* activeInputs) {
    cycle.ProcessAdding(outputs, inputs, numSamples, activeInputs, numInputs, numOutputs);
}

void AmplitudePanning::SetSourcePosition(unsigned int index, CartesianVector const& position, bool /*flag*/) {
    sourcePositions[index] = WithinReach(position);
    convert(sourcePositions[index], cycle.requestedGains.data() + static_cast<std::size_t>(index) * numOutputs, index);
}

void AmplitudePanning::SetSourcePositions(CartesianVector const* positions) {
    for (unsigned int i = 0; i < numInputs; ++i) SetSourcePosition(i, positions[i], false);
}

void AmplitudePanning::SetNumInputs(unsigned int newNumInputs) {
    numInputs = newNumInputs;
    sourcePositions.resize(numInputs);
}

void AmplitudePanning::SetSamplerate(float newSamplerate) {
    const float lengthMs = static_cast<float>(cycle.GetLength()) * 1000.0f / samplerate;
    const float elapsedMs = static_cast<float>(cycle.GetPosition()) * 1000.0f / samplerate;
    samplerate = newSamplerate;
    SetInterpolationTime(lengthMs);
    cycle.SetPosition(elapsedMs * newSamplerate * 0.001f);
}

}  // namespace Lume
