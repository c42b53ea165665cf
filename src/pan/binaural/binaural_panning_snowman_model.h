#pragma once

#include <vector>

#include "pan/binaural/binaural_panning.h"
#include "pan/binaural/ear_pairs.h"
#include "pan/binaural/snowman_processing.h"
#include "pan/null_panning.h"

namespace Lume {

/// Binaural panner that needs no measured data: a spherical head above a spherical torso, which reflects the sound of
/// sources above it and hides those below, after Algazi, Duda and Thompson, "The use of head-and-torso models for
/// improved spatial sound synthesis", 113th AES Convention, 2002.
///
/// A source sounds once it has been given a position.
class BinauralPanningSnowmanModel : public BinauralPanning {
public:
    static constexpr float DefaultTorsoReflectionCoefficient = 0.3f;

    BinauralPanningSnowmanModel(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning for any number of outputs but two.
    static Pan* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Always throws orvandsp::OrvanDspException: there is nothing to load.
    bool LoadFromFile(char const* path) override;

    /// The following three place every source again. The torso's centre stays where the default sizes put it: a longer
    /// neck or a bigger head changes nothing there (kept: quirks.md 24).
    /// @param metres  at least 0.01 m
    void SetListenerHeadRadius(float metres) override;
    void SetListenerTorsoRadius(float metres);
    void SetListenerNeckHeight(float metres);
    /// Gain of the torso's reflection, kept in 0...1.
    void SetTorsoReflectionCoefficient(float coefficient);

    void SetFilterCrossFadeTime(float milliseconds) override;
    void SetInterpolationTime(float milliseconds) override;
    void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) override;
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override {
        voices.ForEach([](SnowmanProcessing& ear) { ear.Clear(); });
    }
    void SetNumInputs(unsigned int newNumInputs) override;

private:
    struct Geometry;

    void ApplyModel(SnowmanProcessing& ear, CartesianVector const& earPosition, CartesianVector const& source,
                    bool flag) const;
    void computeTorsoShadowSubModel(SnowmanProcessing& ear, Geometry const& geometry, bool flag) const;
    void computeTorsoReflectionSubModel(SnowmanProcessing& ear, Geometry const& geometry, bool flag) const;

    CartesianVector leftEar;
    CartesianVector rightEar;
    CartesianVector torsoCentre;
    float torsoRadius = LumeDefaultParameters::DefaultTorsoRadius;  // [m]
    float neckHeight = LumeDefaultParameters::DefaultNeckHeight;    // [m]
    float torsoReflectionCoefficient = DefaultTorsoReflectionCoefficient;
    EarPairs<SnowmanProcessing> voices;
    std::vector<float> leftBuffer;
    std::vector<float> rightBuffer;
};

}  // namespace Lume
