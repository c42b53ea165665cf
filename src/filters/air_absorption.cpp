#include "filters/air_absorption.h"

#include <algorithm>
#include <cmath>

namespace Lume {

namespace {

/// Loss at 1 kHz [dB per metre]; the float next to -0.002 on the side of zero.
constexpr float lossFactor = -0.0019999999f;

}  // namespace

AirAbsorption::AirAbsorption() {
    Configure(samplerate, buffersize, false);
}

void AirAbsorption::SetDistance(float metres) {
    distance = std::abs(metres);
    updateHLShelfGains();
    shelf.SetParameters(parameters);
}

void AirAbsorption::SetRolloffFrequency(float hertz) {
    parameters.freqHigh = std::min(std::max(hertz, 0.0f), inv_sqrt_ten * samplerate);
    parameters.freqLow = parameters.freqHigh * inv_sqrt_thousand;
    updateHLShelfGains();
    shelf.SetParameters(parameters);
}

void AirAbsorption::ResetToDefaults() {
    distance = DefaultDistance;
    parameters = DefaultHLShelfParams;
}

void AirAbsorption::updateHLShelfGains() {
    const float kilohertz = parameters.freqHigh * 0.001f;
    const float limitedDistance = std::clamp(distance, 0.0f, maxDistance);
    parameters.gainHigh = kilohertz * kilohertz * lossFactor * limitedDistance;
    parameters.gainMed = parameters.gainHigh * 0.001f;
    parameters.gainLow = 0.0f;
}

void AirAbsorption::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    if (activeInputs[0] != 0) Process(outputs[0], inputs[0], numSamples);
}

void AirAbsorption::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    shelf.SetSamplerate(newSamplerate);
    SetRolloffFrequency(parameters.freqHigh);
}

}  // namespace Lume
