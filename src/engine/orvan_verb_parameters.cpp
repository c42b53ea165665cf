// The controls of the engine: what each stores and what it sets in motion.

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/orvan_verb.h"

#include "dsp/repeatable_random.h"
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

// Beyond these the input gain of the late field would be infinite or zero, and nothing would come out for good [s].
constexpr float ShortestDecay = 0.01f;
constexpr float LongestDecay = 1000.0f;
/// No gain is more than that [dB]: a ramp on its way to infinity would never come back.
constexpr float MaxGaindB = 200.0f;

float DecibelsToAmplitude(float decibels) {
    return std::sqrt(std::pow(10.0f, std::min(decibels, MaxGaindB) * 0.1f));
}

/// The larger of value and low, then the smaller of that and high; not a number gives low.
float Clamped(float value, float low, float high) {
    return std::min(std::max(low, value), high);
}

void SetShelf(MultiFadedHLShelf& shelf, HLShelfParameters const& p, float globalGain) {
    const auto limited = [](float gainDb) { return Clamped(gainDb, -MaxGaindB, MaxGaindB); };
    shelf.SetAll(std::min(globalGain, MaxGaindB), limited(p.gainLow), limited(p.gainMed), limited(p.gainHigh),
                 p.freqLow, p.freqHigh);
}

/// Stores a value, unless it isn't finite: one that got inside would stay for good.
bool Take(float& stored, float value) {
    if (!std::isfinite(value)) return false;
    stored = value;
    return true;
}

/// The same for a level [dB], which minus infinity switches off.
bool TakeLevel(float& stored, float value) {
    if (std::isnan(value) || value > std::numeric_limits<float>::max()) return false;
    stored = value;
    return true;
}

void Take(HLShelfParameters& stored, HLShelfParameters const& values) {
    TakeLevel(stored.gain, values.gain);
    Take(stored.gainLow, values.gainLow);
    Take(stored.gainMed, values.gainMed);
    Take(stored.gainHigh, values.gainHigh);
    Take(stored.freqLow, values.freqLow);
    Take(stored.freqHigh, values.freqHigh);
}

}  // namespace

void OrvanVerb::UpdateShelf(Layer& layer) {
    const bool inShelf = layer.level == Layer::gainInShelf;
    SetShelf(layer.shelf, layer.parameters, inShelf ? layer.parameters.gain : 0.0f);
}

void OrvanVerb::SetParameters(Layer& layer, HLShelfParameters const& parameters) {
    Take(layer.parameters, parameters);
    if (layer.level == Layer::ramped) SetGain(layer, layer.parameters.gain);
    UpdateShelf(layer);
}

void OrvanVerb::SetGain(Layer& layer, float gainDb) {
    if (!TakeLevel(layer.parameters.gain, gainDb)) return;
    if (layer.level == Layer::ramped)
        layer.gainRamp.Start(DecibelsToAmplitude(gainDb), DefaultRampTime);
    else
        UpdateShelf(layer);
}

void OrvanVerb::Set(float& stored, float value, Layer& layer) {
    if (Take(stored, value)) UpdateShelf(layer);
}

void OrvanVerb::SetDirectLevel(float gainDb) {
    if (!TakeLevel(directLevel, gainDb)) return;
    directLevelRamp.Start(DecibelsToAmplitude(gainDb), DefaultRampTime);
}

void OrvanVerb::SetRoomLevel(float gainDb) {
    if (!TakeLevel(roomLevel, gainDb)) return;
    roomLevelRamp.Start(DecibelsToAmplitude(gainDb), DefaultRampTime);
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
    if (TakeLevel(reverbGain, gainDb)) reverbGainRamp.Start(DecibelsToAmplitude(gainDb), DefaultRampTime);
}

void OrvanVerb::SetDecayTime(float seconds) {
    if (Take(decayTime, seconds)) reverb->SetDecayTime(Clamped(seconds, ShortestDecay, LongestDecay));
}

void OrvanVerb::SetRelativeDecayLow(float factor) {
    if (Take(relativeDecayLow, factor)) reverb->SetRelativeDecayLow(factor);
}

void OrvanVerb::SetRelativeDecayMedium(float factor) {
    if (Take(relativeDecayMedium, factor)) reverb->SetRelativeDecayMedium(factor);
}

void OrvanVerb::SetRelativeDecayHigh(float factor) {
    if (Take(relativeDecayHigh, factor)) reverb->SetRelativeDecayHigh(factor);
}

void OrvanVerb::SetReverbCrossoverFrequencyLow(float frequencyHz) {
    if (Take(crossoverLow, frequencyHz)) reverb->SetCrossoverFrequencyLow(frequencyHz);
}

void OrvanVerb::SetReverbCrossoverFrequencyHigh(float frequencyHz) {
    if (Take(crossoverHigh, frequencyHz)) reverb->SetCrossoverFrequencyHigh(frequencyHz);
}

void OrvanVerb::SetInfinite(bool newInfinite) {
    infinite = newInfinite;
    reverb->SetInfinite(newInfinite);
}

void OrvanVerb::SilenceAirOnRestart(bool silence) {
    reverb->SilenceAirOnRestart(silence);
}

void OrvanVerb::UseAirAbsorption(bool use) {
    useAirAbsorption = use;
    reverb->UseAirAbsorption(use);
}

void OrvanVerb::SetAirAbsorptionRolloffFrequency(float frequencyHz) {
    if (Take(airAbsorptionRolloffFrequency, frequencyHz)) reverb->SetAirAbsorptionRolloffFrequency(frequencyHz);
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
    std::optional<orvandsp::RepeatableRandom> random;
    if (randomSeed) random.emplace(*randomSeed);
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
    reverb->SetDelaysMinSum(start, sum, ReverbDistribution());
}

float OrvanVerb::ReverbDistribution() const noexcept {
    return numInternals > FewChannels ? ReverbDistributionManyChannels : Defaults::DefaultReverbDistr;
}

void OrvanVerb::MakeRoom() {
    // A range that is too narrow for its delays is widened beyond the limit.
    constexpr float widening = 5.0f;  // [ms]
    early->Reserve(std::max(Defaults::MaxEarlyStart, Defaults::MaxEarlyEnd) + widening);
    reverb->Reserve(Defaults::MaxReverbStart, Defaults::MaxReverbModalDensity * 1000.0f, ReverbDistribution());
}

float OrvanVerb::GetTailLength(float decibels) const {
    if (infinite) return std::numeric_limits<float>::infinity();
    const float slowest = std::max({relativeDecayLow, relativeDecayMedium, relativeDecayHigh});
    // The loops are a chunk longer than the delays that the decay is designed for: the shorter, the more.
    constexpr float longLoops = 1.1f;
    const float decay = decayTime * slowest * longLoops * decibels / 60.0f;
    // The way into the late field, and once around.
    const float way = Defaults::MaxEarlyEnd + Defaults::MaxClusterEnd + reverb->GetLongestDelay();
    return decay + 0.001f * way;
}

void OrvanVerb::SetEarlyStart(float milliseconds) {
    if (!Take(earlyStart, milliseconds)) return;
    UpdateEarlyDelays();
    UpdateClusterDelays();
}

void OrvanVerb::SetEarlyEnd(float milliseconds) {
    if (!Take(earlyEnd, milliseconds)) return;
    UpdateEarlyDelays();
    UpdateClusterDelays();
}

void OrvanVerb::SetEarlyDistribution(float distribution) {
    if (!Take(earlyDistribution, distribution)) return;
    UpdateEarlyDelays();
    UpdateClusterDelays();
}

void OrvanVerb::SetClusterStart(float milliseconds) {
    if (!Take(clusterStart, milliseconds)) return;
    UpdateClusterDelays();
    UpdateReverbDelays();
}

void OrvanVerb::SetClusterEnd(float milliseconds) {
    if (!Take(clusterEnd, milliseconds)) return;
    UpdateClusterDelays();
    UpdateReverbDelays();
}

void OrvanVerb::SetClusterDistribution(float distribution) {
    if (!Take(clusterDistribution, distribution)) return;
    UpdateClusterDelays();
    UpdateReverbDelays();
}

void OrvanVerb::SetReverbStart(float milliseconds) {
    if (Take(reverbStart, milliseconds)) UpdateReverbDelays();
}

void OrvanVerb::SetReverbModalDensity(float seconds) {
    if (Take(modalDensity, seconds)) UpdateReverbDelays();
}

void OrvanVerb::SetEarlyShape(float shape) {
    if (Take(earlyShape, shape)) UpdateEarlyGains();
}

void OrvanVerb::SetEarlyWidth(float degrees) {
    if (!Take(earlyWidth, degrees)) return;
    // The early reflections belong to the source that is placed last, so that all are placed again, in order.
    for (unsigned int i = 0; i < sourcePositions.size(); ++i) SetSourcePosition(i, sourcePositions[i]);
}

void OrvanVerb::SetElevation(float degrees) {
    if (!Take(elevation, degrees)) return;
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
