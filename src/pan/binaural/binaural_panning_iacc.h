#pragma once

#include <memory>
#include <vector>

#include "filters/faded_biquad_cascade.h"
#include "math/matrix.h"
#include "mix/signal_matrix.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Binaural panner of the diffuse field: gives two decorrelated channels the correlation that the ears have in a
/// diffuse field, by a fixed pair of filters on their sum and their difference. Positions make no difference.
class BinauralPanningIACC : public BinauralPanning {
public:
    BinauralPanningIACC(unsigned int numInputs, unsigned int numOutputs);
    /// Hears all inputs, in Process and in ProcessAdding. Both ears together are as loud as sum and difference are.
    /// @param sumAndDifference  gains, numInputs x 2
    BinauralPanningIACC(unsigned int numInputs, unsigned int numOutputs,
                        orvandsp::Matrix<float> const& sumAndDifference);

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

    /// Without gains of its own: reads the first two inputs, whatever their number, as they are.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// Without gains of its own: reads the first two inputs, active or not. They stand for all of them, and are raised
    /// by the power of the others, unlike in Process (kept: quirks.md 21).
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// The filters keep their taps: at another rate than 44.1 kHz their frequencies move with it.
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    void LoadTables();
    /// Fits the buffers, and fills them if there are gains. @return whether there are
    bool Mix(float** inputs, unsigned long numSamples);
    void Filter(unsigned long numSamples);

    std::unique_ptr<SignalMatrix> mixer;  // null: the first two inputs
    std::vector<float> sumBuffer;
    FadedBiquadCascade sumFilter;
    std::vector<float> differenceBuffer;
    FadedBiquadCascade differenceFilter;
};

}  // namespace Lume
