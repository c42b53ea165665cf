#pragma once

#include <vector>

#include "filters/faded_biquad_cascade.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Binaural panner of the diffuse field: gives two decorrelated channels the correlation that the ears have in a
/// diffuse field, by a fixed pair of filters on their sum and their difference. Positions make no difference.
class BinauralPanningIACC : public BinauralPanning {
public:
    /// @param level  of what ProcessAdding adds
    BinauralPanningIACC(unsigned int numInputs, unsigned int numOutputs, float level = 1.0f);

    /// A NullPanning for any number of outputs but two, and below two inputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<BinauralPanningIACC>(requestedOutputs == 2 && requestedInputs >= 2, requestedInputs,
                                             requestedOutputs);
    }

    void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) override;
    void SetInterpolationTime(float milliseconds) override;
    /// Does nothing: the number of inputs is that of the constructor.
    void SetNumInputs(unsigned int newNumInputs) override;

    void SetFilterCrossFadeTime(float milliseconds) override;

    /// Reads the first two inputs, whatever their number, as they are.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// Reads the first two inputs, active or not. They stand for all of them, and are raised by the power of the
    /// others, unlike in Process (kept: quirks.md 21).
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// The filters keep their taps: at another rate than 44.1 kHz their frequencies move with it.
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    void FitBuffers(unsigned long numSamples);
    void LoadTables();
    void Filter(unsigned long numSamples);

    float level;
    std::vector<float> sumBuffer;
    FadedBiquadCascade sumFilter;
    std::vector<float> differenceBuffer;
    FadedBiquadCascade differenceFilter;
};

}  // namespace Lume
