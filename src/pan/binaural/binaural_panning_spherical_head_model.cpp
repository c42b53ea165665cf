#include "pan/binaural/binaural_panning_spherical_head_model.h"

#include <algorithm>
#include <cmath>

#include "dsp/orvan_dsp_exception.h"
#include "geometry/vector_algebra.h"
#include "pan/binaural/head_shadow.h"

namespace Lume {

namespace {

/// The angle between an ear and a source, seen from the head's centre [rad]. Without one of the two directions it is
/// the azimuth of the other.
float AngleBetween(CartesianVector const& ear, CartesianVector const& source) {
    const float earLength = ear.radius();
    const float sourceLength = source.radius();
    const bool noSource = sourceLength == 0.0f;
    if (earLength == 0.0f) return noSource ? 0.0f : std::abs(std::atan2(source.y, source.x));
    if (noSource) return std::abs(std::atan2(ear.y, ear.x));
    return std::abs(std::acos(std::clamp(Dot(source, ear) / (sourceLength * earLength), -1.0f, 1.0f)));
}

}  // namespace

void BinauralPanningSphericalHeadModel::DelayAndFilter::Process(float* output, float* input, unsigned long numSamples,
                                                                bool add) {
    delay.Process(buffer.data(), input, static_cast<int>(numSamples));
    filter.ProcessBlock(output, buffer.data(), numSamples, add);
}

void BinauralPanningSphericalHeadModel::DelayAndFilter::Configure(float newSamplerate, unsigned int blockSize) {
    delay.Configure(newSamplerate, blockSize, false);
    filter.Configure(newSamplerate, blockSize, false);
    buffer.resize(blockSize);
}

BinauralPanningSphericalHeadModel::BinauralPanningSphericalHeadModel(unsigned int numberOfInputs,
                                                                     unsigned int numberOfOutputs)
    : BinauralPanning(numberOfInputs, numberOfOutputs),
      speedOverRadius(modelSpeedOfSound / headRadius),
      leftEar{-headRadius, 0.0f, 0.0f},
      rightEar{headRadius, 0.0f, 0.0f},
      samplePeriod(1.0f / samplerate) {
    BinauralPanningSphericalHeadModel::SetNumInputs(numberOfInputs);
    SetITDType(larcherjot);
}

bool BinauralPanningSphericalHeadModel::LoadFromFile(char const* /*path*/) {
    throw orvandsp::OrvanDspException("head model : no hrtf to load", __FILE__, __LINE__);
}

void BinauralPanningSphericalHeadModel::SetListenerHeadRadius(float metres) {
    headRadius = std::max(metres, 0.01f);
    speedOverRadius = modelSpeedOfSound / headRadius;
    leftEar = {-headRadius, 0.0f, 0.0f};
    rightEar = {headRadius, 0.0f, 0.0f};
    forceUpdate(false);
}

void BinauralPanningSphericalHeadModel::SetFilterCrossFadeTime(float milliseconds) {
    voices.ForEach([=](DelayAndFilter& ear) { ear.filter.SetCrossFadeTime(milliseconds); });
}

void BinauralPanningSphericalHeadModel::SetInterpolationTime(float milliseconds) {
    voices.ForEach([=](DelayAndFilter& ear) { ear.delay.SetInterpolationTime(milliseconds); });
}

void BinauralPanningSphericalHeadModel::PlaceEar(DelayAndFilter& ear, CartesianVector const& earPosition,
                                                 CartesianVector const& source, float delayMs, bool flag) const {
    const auto coefficients = HeadShadowCoefficients(AngleBetween(earPosition, source), samplePeriod * speedOverRadius);
    ear.delay.SetDelay(delayMs, flag);
    ear.filter.SetCoefficients(coefficients.data(), flag);
}

void BinauralPanningSphericalHeadModel::setSourceRelativePosition(unsigned int index, CartesianVector const& position,
                                                                  bool flag) {
    float leftDelay, rightDelay;
    getMonauralDelays(position, static_cast<Hrtf*>(nullptr), leftDelay, rightDelay);
    PlaceEar(voices[index].left, leftEar, position, leftDelay, flag);
    PlaceEar(voices[index].right, rightEar, position, rightDelay, flag);
}

void BinauralPanningSphericalHeadModel::Process(float** outputs, float** inputs, unsigned long numSamples,
                                                short const* activeInputs) {
    if (numInputs != 1 || outputs[0] == inputs[0]) {
        ProcessOntoSilence(outputs, inputs, numSamples, activeInputs);
        return;
    }
    if (activeInputs[0] == 0) {
        Silence(outputs, numSamples);
        return;
    }
    voices[0].left.Process(outputs[0], inputs[0], numSamples, false);
    voices[0].right.Process(outputs[1], inputs[0], numSamples, false);
}

void BinauralPanningSphericalHeadModel::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                                      short const* activeInputs) {
    for (unsigned int i = 0; i < numInputs; ++i) {
        if (activeInputs[i] == 0) continue;
        voices[i].left.Process(outputs[0], inputs[i], numSamples, true);
        voices[i].right.Process(outputs[1], inputs[i], numSamples, true);
    }
}

void BinauralPanningSphericalHeadModel::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    samplePeriod = 1.0f / newSamplerate;
    voices.ForEach([=](DelayAndFilter& ear) {
        ear.delay.SetSamplerate(newSamplerate);
        ear.filter.SetSamplerate(newSamplerate);
    });
    forceUpdate(false);
}

void BinauralPanningSphericalHeadModel::SetMaxBlockSize(unsigned int blockSize) {
    StoreMaxBlockSize(blockSize);
    voices.ForEach([=](DelayAndFilter& ear) {
        ear.delay.SetMaxBlockSize(blockSize);
        ear.filter.SetMaxBlockSize(blockSize);
        ear.buffer.resize(blockSize);
    });
}

void BinauralPanningSphericalHeadModel::Clear() {
    voices.ForEach([](DelayAndFilter& ear) {
        ear.delay.Clear();
        ear.filter.Clear();
    });
}

void BinauralPanningSphericalHeadModel::SetNumInputs(unsigned int newNumInputs) {
    BinauralPanning::SetNumInputs(newNumInputs);
    voices.Resize(newNumInputs, [this](DelayAndFilter& ear) { ear.Configure(samplerate, buffersize); });
}

// Not in the header: a page leaves this panner out, by a Create of its own.
Pan* BinauralPanningSphericalHeadModel::Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
    return CreateIf<BinauralPanningSphericalHeadModel>(requestedOutputs == 2, requestedInputs, requestedOutputs);
}

}  // namespace Lume
