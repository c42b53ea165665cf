#include "pan/stereo/stereo_ab_panning.h"

#include <algorithm>
#include <cmath>

#include "pan/stereo/stereo_law.h"

namespace Lume {

StereoABPanning::StereoABPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    numOutputs = numberOfOutputs;
    StereoABPanning::SetNumInputs(numberOfInputs);
}

void StereoABPanning::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    if (numInputs == 1 && activeInputs[0] == 0) return;
    ResizeBuffers(numSamples);
    for (auto& channel : channelBuffers) std::fill(channel.begin(), channel.end(), 0.0f);
    AddVoices(inputs, numSamples, activeInputs);
    for (int c = 0; c < 2; ++c) std::copy_n(channelBuffers[c].begin(), numSamples, outputs[c]);
}

void StereoABPanning::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                    short const* activeInputs) {
    ResizeBuffers(numSamples);
    for (int c = 0; c < 2; ++c) std::copy_n(outputs[c], numSamples, channelBuffers[c].begin());
    AddVoices(inputs, numSamples, activeInputs);
    for (int c = 0; c < 2; ++c) std::copy_n(channelBuffers[c].begin(), numSamples, outputs[c]);
}

void StereoABPanning::SetSourcePosition(unsigned int index, CartesianVector const& position, bool flag) {
    constexpr float scale = 0.44936f;
    sourcePositions[index] = position;
    const float t = ListenerAzimuthRad(position);
    const float q = Directivity(position);
    const float s1 = q * std::sin(0.7853982f - t);
    const float s2 = q * std::sin(0.7853982f + t);
    const float d = std::sin(t) * 0.25f * q;  // [ms]
    voices[index].Set(1.0f + d, 1.0f - d, scale * (1.0f + s1), scale * (1.0f + s2), flag);
}

void StereoABPanning::SetSourcePositions(CartesianVector const* positions) {
    for (unsigned int i = 0; i < numInputs; ++i) SetSourcePosition(i, positions[i], false);
}

void StereoABPanning::SetNumInputs(unsigned int newNumInputs) {
    const std::size_t oldNumVoices = voices.size();
    numInputs = newNumInputs;
    sourcePositions.resize(numInputs);
    voices.resize(numInputs);
    for (std::size_t i = oldNumVoices; i < voices.size(); ++i) voices[i].Configure(samplerate, buffersize);
    SetInterpolationTime(DefaultRampTime);
}

void StereoABPanning::SetInterpolationTime(float milliseconds) {
    for (Voice& voice : voices) voice.SetInterpolationTime(milliseconds);
}

void StereoABPanning::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (Voice& voice : voices) voice.SetSamplerate(newSamplerate);
}

void StereoABPanning::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    ResizeBuffers(blockSize);
    for (Voice& voice : voices) voice.SetMaxBlockSize(blockSize);
}

void StereoABPanning::ResizeBuffers(std::size_t numSamples) {
    signalBuffer.resize(numSamples);
    gainBuffer.resize(numSamples);
    for (auto& channel : channelBuffers) channel.resize(numSamples);
}

void StereoABPanning::AddVoices(float** inputs, unsigned long numSamples, short const* activeInputs) {
    const auto count = static_cast<int>(numSamples);
    for (unsigned int i = 0; i < numInputs; ++i) {
        if (activeInputs[i] == 0) continue;
        const auto add = [&](Delay& delay, orvandsp::Ramp& gain, std::vector<float>& channel) {
            delay.Process(signalBuffer.data(), inputs[i], count);
            ProcessGain(gain, gainBuffer.data(), count);
            for (std::size_t k = 0; k < numSamples; ++k) channel[k] += signalBuffer[k] * gainBuffer[k];
        };
        add(voices[i].leftDelay, voices[i].leftGain, channelBuffers[0]);
        add(voices[i].rightDelay, voices[i].rightGain, channelBuffers[1]);
    }
}

}  // namespace Lume
