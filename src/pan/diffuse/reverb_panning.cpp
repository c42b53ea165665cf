#include "pan/diffuse/reverb_panning.h"

#include <cmath>
#include <vector>

#include "reverb/shuffle.h"

namespace Lume {

ReverbPanning::ReverbPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    numInputs = numberOfInputs;
    numOutputs = numberOfOutputs;
    update();
}

void ReverbPanning::Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) {
    mixer->Process(outputs, inputs, numSamples, orvandsp::allActiveInputs);
}

void ReverbPanning::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                  short const* /*activeInputs*/) {
    mixer->ProcessAdding(outputs, inputs, numSamples, orvandsp::allActiveInputs);
}

void ReverbPanning::SetNumInputs(unsigned int newNumInputs) {
    numInputs = newNumInputs;
    update();
}

void ReverbPanning::SetNumOutputs(unsigned int newNumOutputs) {
    numOutputs = newNumOutputs;
    update();
}

void ReverbPanning::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    mixer->SetSamplerate(newSamplerate);
}

void ReverbPanning::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    mixer->SetMaxBlockSize(blockSize);
}

void ReverbPanning::update() {
    sourcePositions.resize(numInputs);  // what forceUpdate hands out, though nothing here depends on it
    mixer = std::make_unique<SignalMatrix>(numInputs, numOutputs);
    mixer->SetSamplerate(samplerate);
    mixer->SetMaxBlockSize(buffersize);
    mixer->SetGains(ComputeReverbMixingMatrix(numInputs, numOutputs));
}

orvandsp::Matrix<float> ComputeReverbMixingMatrix(unsigned int numInternalChannels, unsigned int numSpeakers) {
    using orvandsp::Matrix;
    constexpr unsigned int numGroups = 4;

    Matrix<float> groupOfChannel(numInternalChannels, numGroups, 0.0f);
    for (unsigned int i = 0; i < numInternalChannels; ++i) groupOfChannel[i][i % numGroups] = 1.0f;

    Matrix<float> signs(numGroups, numGroups, -0.5f);
    for (unsigned int r = 0; r < numGroups; ++r) signs[r][numGroups - 1 - r] = 0.5f;

    Matrix<float> speakerOfGroup(numGroups, numSpeakers, 0.0f);
    if (numSpeakers > 0) {
        const std::vector<unsigned int> permutation = Shuffle::GetPermutationForChannels(numSpeakers);
        for (unsigned int j = 0; j < numSpeakers; ++j) speakerOfGroup[permutation[j] % numGroups][j] = 1.0f;
    }

    Matrix<float> mixing = groupOfChannel * signs * speakerOfGroup;
    const Matrix<float> correlation = mixing * Transpose(mixing);
    float sum = 0.0f;
    for (unsigned int i = 0; i < numInternalChannels; ++i) sum += correlation.GetSumRow(i);
    // A few small layouts have the sum 0 and thus infinite gains. Nothing guards it: they are no use as a diffuse
    // field.
    const float scale = 0.5f * std::sqrt(1.0f / sum);
    for (unsigned int i = 0; i < numInternalChannels; ++i)
        for (float& gain : mixing[i]) gain = scale * gain * static_cast<float>(numInternalChannels);
    return mixing;
}

}  // namespace Lume
