#include "pan/binaural/binaural_panning_snowman_model.h"

#include <algorithm>
#include <cmath>

#include "dsp/orvan_dsp_exception.h"
#include "geometry/vector_algebra.h"
#include "pan/binaural/head_shadow.h"

namespace Lume {

namespace {

constexpr float minHeadRadius = 0.01f;  // [m]
/// The formulas divide by the torso's radius [m].
constexpr float minTorsoRadius = 0.001f;

/// The vector with another length; one without a direction stays.
CartesianVector WithLength(CartesianVector const& v, float length) {
    const float present = Length(v);
    return present > 0.0f ? v * (length / present) : v;
}

/// acos, with what rounding left outside its domain moved onto the edge.
float Acos(float cosine) {
    return std::acos(std::clamp(cosine, -1.0f, 1.0f));
}

}  // namespace

/// What both sub-models know of an ear and a source.
struct BinauralPanningSnowmanModel::Geometry {
    CartesianVector ear;     // e, from the head's centre
    CartesianVector source;  // u, its direction; zero for a source in the head's centre
    CartesianVector d;       // from the torso's centre to the ear
    float distance;          // |d|
    float along;             // u . d
    float headRadius;        // a
    float torsoRadius;       // T

    /// Angle at the head's centre between the ear and a direction.
    float AngleAtEar(CartesianVector const& direction) const { return Acos(Dot(ear, direction) / headRadius); }

    /// The part of the source's direction that is perpendicular to d, scaled to a length.
    CartesianVector Across(float length) const {
        return WithLength(source * (distance * distance) - d * along, length);
    }
};

BinauralPanningSnowmanModel::BinauralPanningSnowmanModel(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : BinauralPanning(numberOfInputs, numberOfOutputs),
      leftEar{-headRadius, 0.0f, 0.0f},
      rightEar{headRadius, 0.0f, 0.0f},
      torsoCentre{0.0f, 0.0f,
                  -(headRadius + LumeDefaultParameters::DefaultTorsoRadius + LumeDefaultParameters::DefaultNeckHeight)},
      leftBuffer(buffersize),
      rightBuffer(buffersize) {
    BinauralPanningSnowmanModel::SetNumInputs(numberOfInputs);
}

bool BinauralPanningSnowmanModel::LoadFromFile(char const* /*path*/) {
    throw orvandsp::OrvanDspException("snowman model : no hrtf to load", __FILE__, __LINE__);
}

void BinauralPanningSnowmanModel::SetListenerHeadRadius(float metres) {
    headRadius = std::max(metres, minHeadRadius);
    leftEar = {-headRadius, 0.0f, 0.0f};
    rightEar = {headRadius, 0.0f, 0.0f};
    forceUpdate(false);
}

void BinauralPanningSnowmanModel::SetListenerTorsoRadius(float metres) {
    torsoRadius = metres;
    forceUpdate(false);
}

void BinauralPanningSnowmanModel::SetListenerNeckHeight(float metres) {
    neckHeight = metres;
    forceUpdate(false);
}

void BinauralPanningSnowmanModel::SetTorsoReflectionCoefficient(float coefficient) {
    torsoReflectionCoefficient = std::clamp(coefficient, 0.0f, 1.0f);
    voices.ForEach([this](SnowmanProcessing& ear) { ear.SetReflectionCoefficient(torsoReflectionCoefficient); });
}

void BinauralPanningSnowmanModel::SetFilterCrossFadeTime(float milliseconds) {
    voices.ForEach([=](SnowmanProcessing& ear) { ear.SetCrossFadeTime(milliseconds); });
}

void BinauralPanningSnowmanModel::SetInterpolationTime(float milliseconds) {
    voices.ForEach([=](SnowmanProcessing& ear) { ear.SetInterpolationTime(milliseconds); });
}

void BinauralPanningSnowmanModel::setSourceRelativePosition(unsigned int index, CartesianVector const& position,
                                                            bool flag) {
    ApplyModel(voices[index].left, leftEar, position, flag);
    ApplyModel(voices[index].right, rightEar, position, flag);
}

void BinauralPanningSnowmanModel::ApplyModel(SnowmanProcessing& ear, CartesianVector const& earPosition,
                                             CartesianVector const& source, bool flag) const {
    Geometry geometry{};
    geometry.ear = earPosition;
    geometry.source = Unit(source);
    geometry.d = earPosition - torsoCentre;
    geometry.distance = Length(geometry.d);
    geometry.along = Dot(geometry.source, geometry.d);
    geometry.headRadius = headRadius;
    geometry.torsoRadius = std::max(torsoRadius, minTorsoRadius);

    // The directions behind the torso, as the ear sees it, form a cone around -d. An ear inside the torso (a square
    // root of what is below 0) and a source without a direction count as hidden.
    const float edge = -std::sqrt(geometry.distance * geometry.distance - geometry.torsoRadius * geometry.torsoRadius);
    const bool shadowed = Length(source) == 0.0f || !(geometry.along >= edge);
    if (shadowed)
        computeTorsoShadowSubModel(ear, geometry, flag);
    else
        computeTorsoReflectionSubModel(ear, geometry, flag);
    ear.SetShadowed(shadowed);
}

void BinauralPanningSnowmanModel::computeTorsoShadowSubModel(SnowmanProcessing& ear, Geometry const& geometry,
                                                             bool flag) const {
    const float distance = geometry.distance;
    const float torso = geometry.torsoRadius;
    // q is the way from the ear to the point where the sound leaves the torso on a tangent.
    const float k = torso * torso / (distance * distance);
    const CartesianVector w = geometry.Across(std::sqrt(std::max((1.0f - k) * k, 0.0f)) * distance);
    const CartesianVector q = geometry.d * k - w - geometry.d;
    const float headAngle = geometry.AngleAtEar(Unit(q));
    const float torsoAngle = geometry.AngleAtEar(geometry.source);

    // The angle for the delay goes from that at the edge of the shadow to pi straight behind the torso.
    const float c0 = Acos(torso / distance) + halfPi;
    const float c1 = Acos(geometry.along / distance);
    const float delayAngle = ((c1 - c0) * pi + (pi - c1) * 1.3526301f) / (pi - c0);

    const auto torsoCoefficients = HeadShadowCoefficients(torsoAngle, modelSpeedOfSound / (torso * samplerate));
    const auto headCoefficients =
        HeadShadowCoefficients(headAngle, modelSpeedOfSound / (geometry.headRadius * samplerate));
    ear.SetDirectPath(HeadShadowDelay(delayAngle, torso), torsoCoefficients.data(), headCoefficients.data(), flag);
}

void BinauralPanningSnowmanModel::computeTorsoReflectionSubModel(SnowmanProcessing& ear, Geometry const& geometry,
                                                                 bool flag) const {
    const float distance = geometry.distance;
    const float torso = geometry.torsoRadius;
    const float directAngle = geometry.AngleAtEar(geometry.source);

    // s, the angle at the torso's centre between the ear and the point that reflects, in closed form from the height f
    // of the source over the plane across d.
    const float r = distance / torso;
    const float f = halfPi - Acos(geometry.along / distance);
    const float fc = Acos(1.0f / r);
    const float f0 = (r - 1.0f) * halfPi / (2.0f * r - 1.0f);
    float s = f0;
    if (f >= -fc && f <= 0.0f)
        s = f0 + (f0 / fc - 1.0f) * f;
    else if (f > 0.0f && f <= halfPi)
        s = f0 * (1.0f + f * -0.63661975f);

    const float m = s + std::atan(std::sin(s) / (r - std::cos(s)));
    const float detour =
        (std::cos(2.0f * m) + 1.0f) *
        std::sqrt(std::max(torso * torso + distance * distance - 2.0f * distance * std::cos(s) * torso, 0.0f)) *
        modelMsPerMetre;

    // v is the way from the ear to the point that reflects.
    const CartesianVector outward = geometry.d * (torso * std::cos(s) / distance);
    const CartesianVector v = outward - geometry.d + geometry.Across(torso * std::sin(s));
    const float reflectedAngle = geometry.AngleAtEar(Unit(v));

    constexpr float passThrough[] = {1.0f, 0.0f, 1.0f, 0.0f};
    const auto headCoefficients =
        HeadShadowCoefficients(directAngle, modelSpeedOfSound / (geometry.headRadius * samplerate));
    ear.SetDirectPath(HeadShadowDelay(directAngle, geometry.headRadius), passThrough, headCoefficients.data(), flag);
    // With the torso's radius, though it is the head that the reflection goes around: part of how the model sounds.
    const auto reflectionCoefficients =
        HeadShadowCoefficients(reflectedAngle, modelSpeedOfSound / (torso * samplerate));
    ear.SetReflectionPath(HeadShadowDelay(reflectedAngle, torso) + detour, reflectionCoefficients.data(), flag);
}

void BinauralPanningSnowmanModel::Process(float** outputs, float** inputs, unsigned long numSamples,
                                          short const* activeInputs) {
    if (numInputs != 1) {
        ProcessOntoSilence(outputs, inputs, numSamples, activeInputs);
        return;
    }
    if (activeInputs[0] == 0) {
        Silence(outputs, numSamples);
        return;
    }
    // Both ears read before either is written: an output may be the input.
    voices[0].left.Process(leftBuffer.data(), inputs[0], numSamples);
    voices[0].right.Process(outputs[1], inputs[0], numSamples);
    std::copy_n(leftBuffer.data(), numSamples, outputs[0]);
}

void BinauralPanningSnowmanModel::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                                short const* activeInputs) {
    for (unsigned int i = 0; i < numInputs; ++i) {
        if (activeInputs[i] == 0) continue;
        voices[i].left.Process(leftBuffer.data(), inputs[i], numSamples);
        voices[i].right.Process(rightBuffer.data(), inputs[i], numSamples);
        for (unsigned long n = 0; n < numSamples; ++n) outputs[0][n] += leftBuffer[n];
        for (unsigned long n = 0; n < numSamples; ++n) outputs[1][n] += rightBuffer[n];
    }
}

void BinauralPanningSnowmanModel::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    voices.ForEach([=](SnowmanProcessing& ear) { ear.SetSamplerate(newSamplerate); });
    forceUpdate(false);
}

void BinauralPanningSnowmanModel::SetMaxBlockSize(unsigned int blockSize) {
    StoreMaxBlockSize(blockSize);
    leftBuffer.resize(blockSize);
    rightBuffer.resize(blockSize);
    voices.ForEach([=](SnowmanProcessing& ear) { ear.SetMaxBlockSize(blockSize); });
}

void BinauralPanningSnowmanModel::SetNumInputs(unsigned int newNumInputs) {
    BinauralPanning::SetNumInputs(newNumInputs);
    voices.Resize(newNumInputs, [this](SnowmanProcessing& ear) {
        ear.SetReflectionCoefficient(torsoReflectionCoefficient);
        ear.Configure(samplerate, buffersize, false);
    });
}

// Not in the header: a page leaves this panner out, by a Create of its own.
Pan* BinauralPanningSnowmanModel::Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
    return CreateIf<BinauralPanningSnowmanModel>(requestedOutputs == 2, requestedInputs, requestedOutputs);
}

}  // namespace Lume
