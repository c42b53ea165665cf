#pragma once

#include <vector>

#include "filters/delay.h"
#include "filters/faded_iir_filter.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/binaural/ear_pairs.h"
#include "pan/null_panning.h"

namespace Lume {

/// Binaural panner that needs no measured data: a spherical head, with the delays of an ITD model (larcherjot unless
/// another is set) and a first-order filter for the head's shadow.
class BinauralPanningSphericalHeadModel : public BinauralPanning {
public:
    BinauralPanningSphericalHeadModel(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning for any number of outputs but two.
    static Pan* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Always throws orvandsp::OrvanDspException: there is nothing to load.
    bool LoadFromFile(char const* path) override;

    /// Places every source again. @param metres  at least 0.01 m
    void SetListenerHeadRadius(float metres) override;
    void SetFilterCrossFadeTime(float milliseconds) override;
    void SetInterpolationTime(float milliseconds) override;
    void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) override;
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;
    void SetNumInputs(unsigned int newNumInputs) override;

private:
    struct DelayAndFilter {
        Delay delay{Delay::DefaultDelayLineLength, Delay::allpass};
        FadedIIRFilter filter{1};
        std::vector<float> buffer;

        void Process(float* output, float* input, unsigned long numSamples, bool add);
        void Configure(float newSamplerate, unsigned int blockSize);
    };
    void PlaceEar(DelayAndFilter& ear, CartesianVector const& earPosition, CartesianVector const& source, float delayMs,
                  bool flag) const;

    float speedOverRadius;  // [1/s]
    CartesianVector leftEar;
    CartesianVector rightEar;
    float samplePeriod;  // [s]
    EarPairs<DelayAndFilter> voices;
};

}  // namespace Lume
