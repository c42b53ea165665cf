#include "mix/signal_matrix.h"

#include <algorithm>

namespace Lume {

SignalMatrix::SignalMatrix(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : cycle(numberOfInputs, numberOfOutputs) {
    numInputs = numberOfInputs;
    numOutputs = numberOfOutputs;
    cycle.SetLength(GainCycle::DefaultLengthSeconds * samplerate);
}

void SignalMatrix::SetRampTime(float milliseconds) {
    cycle.SetLength(0.001f * samplerate * milliseconds);
}

void SignalMatrix::SetGain(unsigned int input, unsigned int output, float gain) {
    cycle.requestedGains[static_cast<std::size_t>(input) * numOutputs + output] = gain;
}

void SignalMatrix::SetGains(float gain) {
    std::fill(cycle.requestedGains.begin(), cycle.requestedGains.end(), gain);
}

void SignalMatrix::SetGains(float const* gains) {
    std::copy_n(gains, cycle.requestedGains.size(), cycle.requestedGains.begin());
}

void SignalMatrix::SetGains(orvandsp::Matrix<float> const& gains) {
    for (unsigned int i = 0; i < numInputs; ++i)
        for (unsigned int j = 0; j < numOutputs; ++j) SetGain(i, j, gains[i][j]);
}

void SignalMatrix::SetRowGains(unsigned int row, float const* gains) {
    if (row >= numInputs) return;
    const std::size_t first = static_cast<std::size_t>(row) * numOutputs;
    std::copy_n(gains, cycle.requestedGains.size() - first, cycle.requestedGains.data() + first);
}

void SignalMatrix::SetColumnGains(unsigned int column, float const* gains) {
    for (unsigned int i = 0; i < numInputs; ++i) SetGain(i, column, gains[i]);
}

void SignalMatrix::GetGains(orvandsp::Matrix<float>& gains) const {
    if (gains.GetNumRows() != numInputs || gains.GetNumColumns() != numOutputs)
        gains = orvandsp::Matrix<float>(numInputs, numOutputs, 0.0f);
    for (unsigned int i = 0; i < numInputs; ++i)
        for (unsigned int j = 0; j < numOutputs; ++j)
            gains[i][j] = cycle.GetTargetGains()[static_cast<std::size_t>(i) * numOutputs + j];
}

void SignalMatrix::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    cycle.Process(outputs, inputs, numSamples, activeInputs, numInputs, numOutputs);
}

void SignalMatrix::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    cycle.ProcessAdding(outputs, inputs, numSamples, activeInputs, numInputs, numOutputs);
}

void SignalMatrix::SetSamplerate(float newSamplerate) {
    const float lengthMs = static_cast<float>(cycle.GetLength()) * 1000.0f / samplerate;
    const float elapsedMs = static_cast<float>(cycle.GetPosition()) * 1000.0f / samplerate;
    samplerate = newSamplerate;
    cycle.SetLength(lengthMs * newSamplerate * 0.001f);
    cycle.SetPosition(0.001f * newSamplerate * elapsedMs);
}

void SignalMatrix::SetMaxBlockSize(unsigned int /*blockSize*/) {}

void SignalMatrix::Clear() {}

}  // namespace Lume
