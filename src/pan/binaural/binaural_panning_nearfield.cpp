#include "pan/binaural/binaural_panning_nearfield.h"

#include <algorithm>
#include <cmath>

#include "dsp/constants.h"
#include "geometry/vector_algebra.h"
#include "pan/binaural/head_shadow.h"

namespace Lume {

namespace {

/// Closer to an ear the level doesn't rise any more [m]: it has to stay finite.
constexpr float minEarDistance = 0.001f;

/// Whether filters of a set, of the wanted kind, can be run. A set without points or coefficients has nothing to hear.
bool Suits(HrtfHeaderInfos const& infos, HrtfType type) {
    return infos.hrtfType == type && infos.numChannels == 2 &&
           (infos.filterType == hrtfBiquadCells || infos.filterType == hrtfFIR) && infos.numCoefficients > 0 &&
           infos.numPoints > 0;
}

HRTFFilterType FilteringOf(HrtfHeaderInfos const& infos) {
    return infos.filterType == hrtfFIR ? firFilter : biquadFilters;
}

void Scale(float* out, float const* in, float gain, unsigned long numSamples) {
    for (unsigned long i = 0; i < numSamples; ++i) out[i] = in[i] * gain;
}

void ScaleAdding(float* out, float const* in, float gain, unsigned long numSamples) {
    for (unsigned long i = 0; i < numSamples; ++i) out[i] += in[i] * gain;
}

}  // namespace

BinauralPanningNearfield::BinauralPanningNearfield(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : BinauralPanning(numberOfInputs, numberOfOutputs),
      hrtf(std::make_unique<Hrtf>("")),
      leftBuffer(buffersize),
      rightBuffer(buffersize) {
    SetEars();
    BinauralPanningNearfield::SetNumInputs(numberOfInputs);
}

void BinauralPanningNearfield::SetNumInputs(unsigned int newNumInputs) {
    BinauralPanning::SetNumInputs(newNumInputs);
    const auto prepareHrtf = [this](HrtfFiltering& chain) {
        chain.SetFilterType(hrtfFilterType);
        chain.SetNumCoefficients(numHrtfCoefficients);
        chain.Configure(samplerate, buffersize, false);
    };
    const auto prepareNearfield = [this](HrtfFiltering& chain) {
        chain.SetFilterType(nearfieldFilterType);
        chain.SetNumCoefficients(numNearfieldCoefficients);
        chain.Configure(samplerate, buffersize, false);
    };
    hrtfChains.Resize(newNumInputs, prepareHrtf, biquadFilters, true);
    nearfieldChains.Resize(newNumInputs, prepareNearfield, noFilter, false);
    orvandsp::Ramp gain;
    gain.SetSamplerate(samplerate);
    leftGains.resize(newNumInputs, gain);
    rightGains.resize(newNumInputs, gain);
    leftGainValues.resize(newNumInputs);
    rightGainValues.resize(newNumInputs);
    leftPoints.resize(newNumInputs);
    rightPoints.resize(newNumInputs);
    leftDelays.resize(newNumInputs);
    rightDelays.resize(newNumInputs);
}

bool BinauralPanningNearfield::SetHrtf(std::unique_ptr<Hrtf> newHrtf) {
    if (!Suits(newHrtf->GetHrtfHeaderInfos(), hrtfBinaural)) return false;
    setHrtfFilterType(FilteringOf(newHrtf->GetHrtfHeaderInfos()), false);
    hrtf = std::move(newHrtf);
    numHrtfCoefficients = hrtf->GetNumCoefficients();
    hrtfChains.ForEach([this](HrtfFiltering& chain) { chain.SetNumCoefficients(numHrtfCoefficients); });
    forceUpdate(false);
    return true;
}

bool BinauralPanningNearfield::LoadCompensationFilters(char const* path) {
    auto loaded = std::make_unique<NearfieldCompensationFilters>(path);
    if (!Suits(loaded->GetHrtfHeaderInfos(), hrtfNearfieldCompensationFilter)) return false;
    setNearfieldFilterType(FilteringOf(loaded->GetHrtfHeaderInfos()), false);
    compensationFilters = std::move(loaded);
    numNearfieldCoefficients = compensationFilters->GetNumCoefficients();
    nearfieldChains.ForEach([this](HrtfFiltering& chain) { chain.SetNumCoefficients(numNearfieldCoefficients); });
    forceUpdate(false);
    return true;
}

void BinauralPanningNearfield::Enable(Option option, bool enabled) {
    options = enabled ? options | option : options & ~static_cast<unsigned int>(option);
    forceUpdate(false);
}

void BinauralPanningNearfield::SetEars() {
    leftEar = {headCentre.x - headRadius, headCentre.y, headCentre.z};
    rightEar = {headCentre.x + headRadius, headCentre.y, headCentre.z};
}

void BinauralPanningNearfield::SetListenerHeadRadius(float metres) {
    headRadius = std::min(std::max(metres, 0.0f), measurementSphereRadius);
    SetEars();
}

void BinauralPanningNearfield::SetMinimumRadiusAroundListener(float metres) {
    minimumRadius = std::max(metres, headRadius);
    forceUpdate(false);
}

void BinauralPanningNearfield::setHrtfFilterType(HRTFFilterType type, bool update) {
    hrtfFilterType = type;
    hrtfChains.ForEach([=](HrtfFiltering& chain) { chain.SetFilterType(type); });
    if (update) forceUpdate(false);
}

void BinauralPanningNearfield::setNearfieldFilterType(HRTFFilterType type, bool update) {
    nearfieldFilterType = type;
    nearfieldChains.ForEach([=](HrtfFiltering& chain) { chain.SetFilterType(type); });
    if (update) forceUpdate(false);
}

void BinauralPanningNearfield::SetFilterCrossFadeTime(float milliseconds) {
    const auto set = [=](HrtfFiltering& chain) { chain.SetCrossFadeTime(milliseconds); };
    hrtfChains.ForEach(set);
    nearfieldChains.ForEach(set);
    for (orvandsp::Ramp& gain : leftGains) gain.SetTimeConstant(milliseconds);
    for (orvandsp::Ramp& gain : rightGains) gain.SetTimeConstant(milliseconds);
}

void BinauralPanningNearfield::SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation) {
    const auto set = [=](HrtfFiltering& chain) { chain.SetFIRFiltersImplementationMethod(implementation); };
    hrtfChains.ForEach(set);
    nearfieldChains.ForEach(set);
    forceUpdate(false);
}

void BinauralPanningNearfield::SetInterpolationTime(float milliseconds) {
    hrtfChains.ForEach([=](HrtfFiltering& chain) { chain.SetInterpolationTime(milliseconds); });
}

void BinauralPanningNearfield::setSourceRelativePosition(unsigned int index, CartesianVector const& position,
                                                         bool /*flag*/) {
    SelectPoints(index, position);
    SetGains(index, position);
    if (hrtfFilterType == biquadFilters) SetDelays(index, position);
    hrtfChains[index].left.SetCoefficients(EarCoefficients(leftPoints[index], 0), false);
    hrtfChains[index].right.SetCoefficients(EarCoefficients(rightPoints[index], 1), false);

    if (nearfieldFilterType == noFilter || !compensationFilters) return;
    // Beyond the range of the compensation filters the last ones stay.
    if (compensationFilters->GetMaxDistance() < position.radius()) return;
    HrtfPoint const& point = compensationFilters->GetNearestHrtfPoint({position.x, position.y, 0.0f});
    nearfieldChains[index].left.SetCoefficients(EarCoefficients(point, 0), false);
    nearfieldChains[index].right.SetCoefficients(EarCoefficients(point, 1), false);
}

void BinauralPanningNearfield::SelectPoints(unsigned int index, CartesianVector const& position) {
    if (IsEnabled(crossEarsSelection)) {
        getCrossEarsHRTFPoints(position, leftPoints[index], rightPoints[index]);
    } else {
        leftPoints[index] = hrtf->GetNearestHrtfPoint(position);
        rightPoints[index] = leftPoints[index];
    }
}

void BinauralPanningNearfield::SetGains(unsigned int index, CartesianVector const& position) {
    float left = 1.0f;
    float right = 1.0f;
    if (IsEnabled(distanceAttenuation)) {
        if (IsEnabled(gainsCorrection)) {
            left = measurementSphereRadius / std::max(Distance(position, leftEar), minEarDistance);
            right = measurementSphereRadius / std::max(Distance(position, rightEar), minEarDistance);
        } else {
            left = measurementSphereRadius / std::max(std::max(position.radius(), minimumRadius), minEarDistance);
            right = left;
        }
    }
    leftGainValues[index] = left;
    rightGainValues[index] = right;
    leftGains[index].Start(left, orvandsp::Ramp::DefaultRampDuration);
    rightGains[index].Start(right, orvandsp::Ramp::DefaultRampDuration);
}

void BinauralPanningNearfield::SetDelays(unsigned int index, CartesianVector const& position) {
    float left, right;
    getMonauralDelays(position, hrtf.get(), left, right);
    if (IsEnabled(delaysCorrection)) {
        const float h =
            (Distance(position, leftPoints[index].position) - Distance(position, rightPoints[index].position)) *
            modelMsPerMetre * 0.5f;
        const float common = std::abs(h);
        if (position.radius() > measurementSphereRadius) {
            left += common + h;
            right += common - h;
        } else {
            // A set whose points lie far apart could make this negative.
            left = std::max(left - (common + h), 0.0f);
            right = std::max(right - (common - h), 0.0f);
        }
    }
    leftDelays[index] = left;
    rightDelays[index] = right;
    hrtfChains[index].left.SetDelay(left, false);
    hrtfChains[index].right.SetDelay(right, false);
}

void BinauralPanningNearfield::getCrossEarsHRTFPoints(CartesianVector const& position, HrtfPoint& left,
                                                      HrtfPoint& right) const {
    CartesianVector q = position;
    if (!(std::abs(position.radius()) > minimumRadius))
        q.z = std::sqrt(
            std::max(minimumRadius * minimumRadius - position.x * position.x - position.y * position.y, 0.0f));
    left = hrtf->GetNearestHrtfPoint(getCrossEarsPosition(q, leftEar));
    right = hrtf->GetNearestHrtfPoint(getCrossEarsPosition(q, rightEar));
}

CartesianVector BinauralPanningNearfield::getCrossEarsPosition(CartesianVector const& position,
                                                               CartesianVector const& ear) const {
    const CartesianVector v = position - ear;
    const CartesianVector w = ear - headCentre;
    const float a = Dot(v, v);
    const float b = 2.0f * Dot(v, w);
    const float c = Dot(w, w) - measurementSphereRadius * measurementSphereRadius;
    const float root = std::sqrt(b * b - 4.0f * a * c);
    const float t1 = (root - b) * 0.5f / a;
    const float t2 = (-b - root) * 0.5f / a;
    const bool forward = v.x >= 0.0f ? t1 >= 0.0f : t1 > 0.0f;
    const float t = forward ? t1 : t2;
    return {ear.x + t * v.x, ear.y + t * v.y, ear.z + t * v.z};
}

/// Filters a source into leftBuffer and rightBuffer.
void BinauralPanningNearfield::RunVoice(unsigned int index, float* input, unsigned long numSamples) {
    if (IsEnabled(hrtfFilters)) {
        const HrtfFiltering::Job ways[] = {{&hrtfChains[index].left, leftBuffer.data(), input},
                                           {&hrtfChains[index].right, rightBuffer.data(), input}};
        HrtfFiltering::ProcessSeveral(ways, numSamples);
    } else {
        std::copy_n(input, numSamples, leftBuffer.data());
        std::copy_n(input, numSamples, rightBuffer.data());
    }
    if (IsEnabled(nearfieldFilters)) {
        const HrtfFiltering::Job ways[] = {{&nearfieldChains[index].left, leftBuffer.data(), leftBuffer.data()},
                                           {&nearfieldChains[index].right, rightBuffer.data(), rightBuffer.data()}};
        HrtfFiltering::ProcessSeveral(ways, numSamples);
    }
}

void BinauralPanningNearfield::Process(float** outputs, float** inputs, unsigned long numSamples,
                                       short const* activeInputs) {
    if (numInputs != 1) {
        ProcessOntoSilence(outputs, inputs, numSamples, activeInputs);
        return;
    }
    if (activeInputs[0] == 0) {
        Silence(outputs, numSamples);
        return;
    }
    RunVoice(0, inputs[0], numSamples);
    // The gains step from block to block (kept: quirks.md 23).
    Scale(outputs[0], leftBuffer.data(), leftGains[0].Advance(numSamples) * orvandsp::sqrt2div2, numSamples);
    Scale(outputs[1], rightBuffer.data(), rightGains[0].Advance(numSamples) * orvandsp::sqrt2div2, numSamples);
}

void BinauralPanningNearfield::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                             short const* activeInputs) {
    for (unsigned int i = 0; i < numInputs; ++i) {
        if (activeInputs[i] == 0) continue;
        RunVoice(i, inputs[i], numSamples);
        ScaleAdding(outputs[0], leftBuffer.data(), leftGains[i].Advance(numSamples) * orvandsp::sqrt2div2, numSamples);
        ScaleAdding(outputs[1], rightBuffer.data(), rightGains[i].Advance(numSamples) * orvandsp::sqrt2div2,
                    numSamples);
    }
}

void BinauralPanningNearfield::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    const auto set = [=](HrtfFiltering& chain) { chain.SetSamplerate(newSamplerate); };
    hrtfChains.ForEach(set);
    nearfieldChains.ForEach(set);
    for (orvandsp::Ramp& gain : leftGains) gain.SetSamplerate(newSamplerate);
    for (orvandsp::Ramp& gain : rightGains) gain.SetSamplerate(newSamplerate);
}

void BinauralPanningNearfield::SetMaxBlockSize(unsigned int blockSize) {
    StoreMaxBlockSize(blockSize);
    leftBuffer.resize(blockSize);
    rightBuffer.resize(blockSize);
    const auto set = [=](HrtfFiltering& chain) { chain.SetMaxBlockSize(blockSize); };
    hrtfChains.ForEach(set);
    nearfieldChains.ForEach(set);
}

void BinauralPanningNearfield::Clear() {
    const auto clear = [](HrtfFiltering& chain) { chain.Clear(); };
    hrtfChains.ForEach(clear);
    nearfieldChains.ForEach(clear);
}

// Not in the header: a page leaves this panner out, by a Create of its own.
Pan* BinauralPanningNearfield::Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
    return CreateIf<BinauralPanningNearfield>(requestedOutputs == 2, requestedInputs, requestedOutputs);
}

}  // namespace Lume
