// The controls of the engine: what each stores and what it sets in motion.

#include <algorithm>
#include <cmath>

#include "engine/orvan_verb.h"
#include "geometry/azimuth.h"
#include "geometry/spherical_vector.h"
#include "reverb/early_gains.h"

namespace Lume {

using Defaults = LumeDefaultParameters;

namespace {

// No limit of the cluster start, which is an absolute time (kept: quirks.md 12).
constexpr float MinClusterOffset = 1.0f;                // [ms]
constexpr float ReverbDistributionManyChannels = 0.3f;  // from 9 channels on
constexpr unsigned int FewChannels = 8;

float DecibelsToAmplitude(float decibels) {
    return std::sqrt(std::pow(10.0f, decibels * 0.1f));
}

/// The larger of value and low, then the smaller of that and high; not a number gives low.
float Clamped(float value, float low, float high) {
    return std::min(std::max(low, value), high);
}

void SetShelf(MultiFadedHLShelf& shelf, HLShelfParameters const& p, float globalGain) {
    shelf.SetAll(globalGain, p.gainLow, p.gainMed, p.gainHigh, p.freqLow, p.freqHigh);
}

}  // namespace

// The layer gains of these three run through their ramps alone, so that their shelves get 0 dB.
void OrvanVerb::UpdateDirectShelf() {
    SetShelf(directShelf, directParameters, 0.0f);
}

void OrvanVerb::UpdateEarlyShelf() {
    SetShelf(earlyShelf, earlyParameters, 0.0f);
}

void OrvanVerb::UpdateClusterShelf() {
    SetShelf(clusterShelf, clusterParameters, 0.0f);
}

// The room has no ramp.
void OrvanVerb::UpdateRoomShelf() {
    SetShelf(roomShelf, roomParameters, roomParameters.gain);
}

void OrvanVerb::SetDirectParameters(HLShelfParameters const& parameters) {
    directParameters = parameters;
    SetDirectGain(parameters.gain);
    UpdateDirectShelf();
}

void OrvanVerb::SetDirectGain(float gainDb) {
    directParameters.gain = gainDb;
    directGainRamp.Start(DecibelsToAmplitude(gainDb), DefaultRampTime);
}

void OrvanVerb::SetDirectGainLow(float gainDb) {
    directParameters.gainLow = gainDb;
    UpdateDirectShelf();
}

void OrvanVerb::SetDirectGainMedium(float gainDb) {
    directParameters.gainMed = gainDb;
    UpdateDirectShelf();
}

void OrvanVerb::SetDirectGainHigh(float gainDb) {
    directParameters.gainHigh = gainDb;
    UpdateDirectShelf();
}

void OrvanVerb::SetDirectCrossoverFrequencyLow(float frequencyHz) {
    directParameters.freqLow = frequencyHz;
    UpdateDirectShelf();
}

void OrvanVerb::SetDirectCrossoverFrequencyHigh(float frequencyHz) {
    directParameters.freqHigh = frequencyHz;
    UpdateDirectShelf();
}

void OrvanVerb::SetRoomParameters(HLShelfParameters const& parameters) {
    roomParameters = parameters;
    UpdateRoomShelf();
}

void OrvanVerb::SetRoomGain(float gainDb) {
    roomParameters.gain = gainDb;
    UpdateRoomShelf();
}

void OrvanVerb::SetRoomGainLow(float gainDb) {
    roomParameters.gainLow = gainDb;
    UpdateRoomShelf();
}

void OrvanVerb::SetRoomGainMedium(float gainDb) {
    roomParameters.gainMed = gainDb;
    UpdateRoomShelf();
}

void OrvanVerb::SetRoomGainHigh(float gainDb) {
    roomParameters.gainHigh = gainDb;
    UpdateRoomShelf();
}

void OrvanVerb::SetRoomCrossoverFrequencyLow(float frequencyHz) {
    roomParameters.freqLow = frequencyHz;
    UpdateRoomShelf();
}

void OrvanVerb::SetRoomCrossoverFrequencyHigh(float frequencyHz) {
    roomParameters.freqHigh = frequencyHz;
    UpdateRoomShelf();
}

void OrvanVerb::SetEarlyParameters(HLShelfParameters const& parameters) {
    earlyParameters = parameters;
    SetEarlyGain(parameters.gain);
    UpdateEarlyShelf();
}

void OrvanVerb::SetEarlyGain(float gainDb) {
    earlyParameters.gain = gainDb;
    earlyGainRamp.Start(DecibelsToAmplitude(gainDb), DefaultRampTime);
}

void OrvanVerb::SetEarlyGainLow(float gainDb) {
    earlyParameters.gainLow = gainDb;
    UpdateEarlyShelf();
}

void OrvanVerb::SetEarlyGainMedium(float gainDb) {
    earlyParameters.gainMed = gainDb;
    UpdateEarlyShelf();
}

void OrvanVerb::SetEarlyGainHigh(float gainDb) {
    earlyParameters.gainHigh = gainDb;
    UpdateEarlyShelf();
}

void OrvanVerb::SetEarlyCrossoverFrequencyLow(float frequencyHz) {
    earlyParameters.freqLow = frequencyHz;
    UpdateEarlyShelf();
}

void OrvanVerb::SetEarlyCrossoverFrequencyHigh(float frequencyHz) {
    earlyParameters.freqHigh = frequencyHz;
    UpdateEarlyShelf();
}

void OrvanVerb::SetClusterParameters(HLShelfParameters const& parameters) {
    clusterParameters = parameters;
    SetClusterGain(parameters.gain);
    UpdateClusterShelf();
}

void OrvanVerb::SetClusterGain(float gainDb) {
    clusterParameters.gain = gainDb;
    clusterGainRamp.Start(DecibelsToAmplitude(gainDb), DefaultRampTime);
}

void OrvanVerb::SetClusterGainLow(float gainDb) {
    clusterParameters.gainLow = gainDb;
    UpdateClusterShelf();
}

void OrvanVerb::SetClusterGainMedium(float gainDb) {
    clusterParameters.gainMed = gainDb;
    UpdateClusterShelf();
}

void OrvanVerb::SetClusterGainHigh(float gainDb) {
    clusterParameters.gainHigh = gainDb;
    UpdateClusterShelf();
}

void OrvanVerb::SetClusterCrossoverFrequencyLow(float frequencyHz) {
    clusterParameters.freqLow = frequencyHz;
    UpdateClusterShelf();
}

void OrvanVerb::SetClusterCrossoverFrequencyHigh(float frequencyHz) {
    clusterParameters.freqHigh = frequencyHz;
    UpdateClusterShelf();
}

void OrvanVerb::SetReverbParameters(ReverbDspParameters const& parameters) {
    SetReverbGain(parameters.gain);
    SetDecayTime(parameters.decayTime);
    SetRelativeDecayLow(parameters.relativeDecayLow);
    SetRelativeDecayMedium(parameters.relativeDecayMedium);
    SetRelativeDecayHigh(parameters.relativeDecayHigh);
    SetReverbCrossoverFrequencyLow(parameters.crossoverFrequencyLow);
    SetReverbCrossoverFrequencyHigh(parameters.crossoverFrequencyHigh);
}

void OrvanVerb::SetReverbGain(float gainDb) {
    reverbGain = gainDb;
    reverbGainRamp.Start(DecibelsToAmplitude(gainDb), DefaultRampTime);
}

void OrvanVerb::SetDecayTime(float seconds) {
    decayTime = seconds;
    reverb->SetDecayTime(seconds);
}

void OrvanVerb::SetRelativeDecayLow(float factor) {
    relativeDecayLow = factor;
    reverb->SetRelativeDecayLow(factor);
}

void OrvanVerb::SetRelativeDecayMedium(float factor) {
    relativeDecayMedium = factor;
    reverb->SetRelativeDecayMedium(factor);
}

void OrvanVerb::SetRelativeDecayHigh(float factor) {
    relativeDecayHigh = factor;
    reverb->SetRelativeDecayHigh(factor);
}

void OrvanVerb::SetReverbCrossoverFrequencyLow(float frequencyHz) {
    crossoverLow = frequencyHz;
    reverb->SetCrossoverFrequencyLow(frequencyHz);
}

void OrvanVerb::SetReverbCrossoverFrequencyHigh(float frequencyHz) {
    crossoverHigh = frequencyHz;
    reverb->SetCrossoverFrequencyHigh(frequencyHz);
}

void OrvanVerb::SetInfinite(bool newInfinite) {
    infinite = newInfinite;
    reverb->SetInfinite(newInfinite);
}

void OrvanVerb::UseAirAbsorption(bool use) {
    useAirAbsorption = use;
    reverb->UseAirAbsorption(use);
}

void OrvanVerb::SetAirAbsorptionRolloffFrequency(float frequencyHz) {
    airAbsorptionRolloffFrequency = frequencyHz;
    reverb->SetAirAbsorptionRolloffFrequency(frequencyHz);
}

// Users give absolute times, but the blocks stand in series: the delays of each are measured from those of the block
// before it. All differences are those of the stored values; only what goes to a block is clamped.

void OrvanVerb::UpdateEarlyDelays() {
    const float first = Clamped(earlyStart, Defaults::MinEarlyStart, Defaults::MaxEarlyStart);
    const float last = Clamped(earlyEnd, first, Defaults::MaxEarlyEnd);
    const float distribution = Clamped(earlyDistribution, Defaults::MinDistribution, Defaults::MaxDistribution);
    early->SetDelays(earlyDelgen.SetMinMax(std::min(first, last), std::max(first, last), distribution));
    UpdateEarlyGains();
}

void OrvanVerb::UpdateEarlyGains() {
    GetRecommendedEarlyGains(earlyGains, numInternals, earlyShape, early->GetLength(), true,
                             random ? &*random : nullptr);
}

void OrvanVerb::UpdateClusterDelays() {
    const float first = Clamped(clusterStart - earlyStart, MinClusterOffset, Defaults::MaxClusterStart);
    const float last = Clamped(clusterEnd - earlyEnd, first, Defaults::MaxClusterEnd);
    const float distribution = Clamped(clusterDistribution, Defaults::MinDistribution, Defaults::MaxDistribution);
    cluster->SetDelays(clusterDelgen.SetMinMax(std::min(first, last), std::max(first, last), distribution));
}

void OrvanVerb::UpdateReverbDelays() {
    const float start = Clamped(reverbStart - clusterStart, 0.0f, Defaults::MaxReverbStart);
    const float sum = Clamped(modalDensity, Defaults::MinReverbModalDensity, Defaults::MaxReverbModalDensity) * 1000.0f;
    const float distribution =
        numInternals > FewChannels ? ReverbDistributionManyChannels : Defaults::DefaultReverbDistr;
    reverb->SetDelaysMinSum(start, sum, distribution);
}

void OrvanVerb::SetEarlyStart(float milliseconds) {
    earlyStart = milliseconds;
    UpdateEarlyDelays();
    UpdateClusterDelays();
}

void OrvanVerb::SetEarlyEnd(float milliseconds) {
    earlyEnd = milliseconds;
    UpdateEarlyDelays();
    UpdateClusterDelays();
}

void OrvanVerb::SetEarlyDistribution(float distribution) {
    earlyDistribution = distribution;
    UpdateEarlyDelays();
    UpdateClusterDelays();
}

void OrvanVerb::SetClusterStart(float milliseconds) {
    clusterStart = milliseconds;
    UpdateClusterDelays();
    UpdateReverbDelays();
}

void OrvanVerb::SetClusterEnd(float milliseconds) {
    clusterEnd = milliseconds;
    UpdateClusterDelays();
    UpdateReverbDelays();
}

void OrvanVerb::SetClusterDistribution(float distribution) {
    clusterDistribution = distribution;
    UpdateClusterDelays();
    UpdateReverbDelays();
}

void OrvanVerb::SetReverbStart(float milliseconds) {
    reverbStart = milliseconds;
    UpdateReverbDelays();
}

void OrvanVerb::SetReverbModalDensity(float seconds) {
    modalDensity = seconds;
    UpdateReverbDelays();
}

void OrvanVerb::SetEarlyShape(float shape) {
    earlyShape = shape;
    UpdateEarlyGains();
}

void OrvanVerb::SetEarlyWidth(float degrees) {
    earlyWidth = degrees;
    // The early reflections belong to the source that is placed last, so that all are placed again, in order.
    for (unsigned int i = 0; i < sourcePositions.size(); ++i) SetSourcePosition(i, sourcePositions[i]);
}

void OrvanVerb::SetElevation(float degrees) {
    elevation = degrees;
    for (unsigned int i = 0; i < sourcePositions.size(); ++i) {
        SphericalVector spherical;
        spherical = sourcePositions[i];
        spherical.elevation = DegreesToRadians * degrees;
        CartesianVector position;
        position = spherical;
        SetSourcePosition(i, position);
    }
}

}  // namespace Lume
