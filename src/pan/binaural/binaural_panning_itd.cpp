#include "pan/binaural/binaural_panning_itd.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "dsp/batch.h"
#include "filters/delay_batch.h"
#include "geometry/vector_algebra.h"

namespace Lume {

namespace {

/// What a source at the side adds to the delay of the far ear [ms], and takes from its gain.
constexpr float sideEffect = -0.35f;

void Multiply(float* out, float const* signal, float const* gain, unsigned long numSamples) {
    for (unsigned long i = 0; i < numSamples; ++i) out[i] = signal[i] * gain[i];
}

void MultiplyAdding(float* out, float const* signal, float const* gain, unsigned long numSamples) {
    for (unsigned long i = 0; i < numSamples; ++i) out[i] += signal[i] * gain[i];
}

}  // namespace

BinauralPanningITD::BinauralPanningITD(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : BinauralPanning(numberOfInputs, numberOfOutputs) {
    BinauralPanningITD::SetNumInputs(numberOfInputs);
}

void BinauralPanningITD::setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) {
    const float distance = Length(position);
    const float elevation = distance > 0.0f ? std::asin(position.z / distance) : 0.0f;
    const float nearness = std::clamp(distance, -1.0f, 1.0f);
    const float side = std::sin(halfPi - std::atan2(position.y, position.x));  // of the listener's azimuth
    const float v = std::cos(elevation) * side * sideEffect * nearness;
    voices[index].Set(1.0f - v, 1.0f + v, 0.70710678f + v, 0.70710678f - v, flag);
}

void BinauralPanningITD::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    if (numInputs != 1) {
        ProcessOntoSilence(outputs, inputs, numSamples, activeInputs);
        return;
    }
    if (activeInputs[0] == 0) return;
    if (gainBuffer.size() != numSamples) gainBuffer.resize(numSamples);
    signalBuffers.Resize(orvandsp::kernels::maxLanes, static_cast<unsigned int>(numSamples));
    DelayGainPair& voice = voices[0];
    const int count = static_cast<int>(numSamples);
    // Both ears read before either is written: an output may be the input.
    const DelayJob ears[] = {{&voice.leftDelay, signalBuffers.GetChannel(0), inputs[0]},
                             {&voice.rightDelay, signalBuffers.GetChannel(1), inputs[0]}};
    ProcessDelays(ears, count);
    ProcessGain(voice.leftGain, gainBuffer.data(), count);
    Multiply(outputs[0], ears[0].output, gainBuffer.data(), numSamples);
    ProcessGain(voice.rightGain, gainBuffer.data(), count);
    Multiply(outputs[1], ears[1].output, gainBuffer.data(), numSamples);
}

void BinauralPanningITD::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                       short const* activeInputs) {
    if (gainBuffer.size() != numSamples) gainBuffer.resize(numSamples);
    signalBuffers.Resize(orvandsp::kernels::maxLanes, static_cast<unsigned int>(numSamples));
    const int count = static_cast<int>(numSamples);
    orvandsp::Ramp* gains[orvandsp::kernels::maxLanes];
    const auto addSome = [&](std::span<DelayJob const> ears) {
        ProcessDelays(ears, count);
        for (std::size_t e = 0; e < ears.size(); ++e) {
            ProcessGain(*gains[e], gainBuffer.data(), count);
            MultiplyAdding(outputs[e % 2], ears[e].output, gainBuffer.data(), numSamples);
        }
    };
    orvandsp::Batch<DelayJob, decltype(addSome)> ears(addSome);
    unsigned int buffer = 0;
    for (unsigned int i = 0; i < numInputs; ++i) {
        if (activeInputs[i] == 0) continue;
        DelayGainPair& voice = voices[i];
        for (auto const& [delay, gain] :
             {std::pair(&voice.leftDelay, &voice.leftGain), std::pair(&voice.rightDelay, &voice.rightGain)}) {
            const unsigned int place = buffer++ % orvandsp::kernels::maxLanes;
            gains[place] = gain;
            ears.Add({delay, signalBuffers.GetChannel(place), inputs[i]});
        }
    }
    ears.Finish();
}

void BinauralPanningITD::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (DelayGainPair& voice : voices) voice.SetSamplerate(newSamplerate);
}

void BinauralPanningITD::SetMaxBlockSize(unsigned int blockSize) {
    StoreMaxBlockSize(blockSize);
    gainBuffer.resize(blockSize);
    signalBuffers.Resize(orvandsp::kernels::maxLanes, blockSize);
    for (DelayGainPair& voice : voices) voice.SetMaxBlockSize(blockSize);
}

void BinauralPanningITD::Clear() {
    gainBuffer.clear();
    for (DelayGainPair& voice : voices) voice.Clear();
}

void BinauralPanningITD::SetNumInputs(unsigned int newNumInputs) {
    BinauralPanning::SetNumInputs(newNumInputs);
    const std::size_t numBefore = voices.size();
    voices.resize(newNumInputs);
    for (std::size_t i = numBefore; i < voices.size(); ++i) voices[i].Configure(samplerate, buffersize);
    SetInterpolationTime(interpolationTime);
    SetInterpolationMode(DefaultInterpolationModeForDelayLines);
}

void BinauralPanningITD::SetInterpolationTime(float milliseconds) {
    interpolationTime = milliseconds;
    for (DelayGainPair& voice : voices) voice.SetInterpolationTime(milliseconds);
}

void BinauralPanningITD::SetInterpolationMode(Delay::InterpolationMode mode) {
    for (DelayGainPair& voice : voices) {
        voice.leftDelay.SetInterpolationMode(mode);
        voice.rightDelay.SetInterpolationMode(mode);
    }
}

}  // namespace Lume
