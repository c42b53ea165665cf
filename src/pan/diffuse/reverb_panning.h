#pragma once

#include <memory>

#include "math/matrix.h"
#include "mix/signal_matrix.h"
#include "pan/pan.h"

namespace Lume {

/// Spreads the internal channels of a reverberator, which are uncorrelated and have no position, over the loudspeakers:
/// every loudspeaker gets another signed mix of them at the same power. Positions make no difference.
class ReverbPanning : public Pan {
public:
    /// @param numInputs  at most 64
    ReverbPanning(unsigned int numInputs, unsigned int numOutputs);
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return new ReverbPanning(requestedInputs, requestedOutputs);
    }

    /// The caller's activeInputs make no difference: a reverberator rings on without input.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    void SetSourcePosition(unsigned int /*index*/, CartesianVector const& /*position*/, bool /*flag*/) override {}
    void SetSourcePositions(CartesianVector const* /*positions*/) override {}
    void SetLoudspeakerPositions(CartesianVector const* /*positions*/) override {}

    /// Every change of the number of channels makes a new mixer, which fades in from silence over the default time.
    void SetNumInputs(unsigned int newNumInputs) override;
    void SetNumOutputs(unsigned int newNumOutputs) override;
    void SetInterpolationTime(float milliseconds) override { mixer->SetRampTime(milliseconds); }
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override { mixer->Clear(); }

    /// Mixes by other gains than those of ComputeReverbMixingMatrix, until a number of channels changes.
    /// @param gains  inputs x outputs
    void SetGains(orvandsp::Matrix<float> const& gains) { mixer->SetGains(gains); }

private:
    void update();

    std::unique_ptr<SignalMatrix> mixer;
};

/// The gains from internal channels (rows) to loudspeakers (columns): signs from a 4 x 4 Householder matrix, dealt to
/// the channels in turn and to the loudspeakers by the permutation of the channel shuffle. With 4 n internal channels
/// every gain is 1 / sqrt(numSpeakers) in magnitude.
orvandsp::Matrix<float> ComputeReverbMixingMatrix(unsigned int numInternalChannels, unsigned int numSpeakers);

}  // namespace Lume
