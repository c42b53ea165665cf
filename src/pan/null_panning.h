#pragma once

#include "pan/pan.h"

namespace Lume {

/// The panner that stands in where no real one can be made. It has no channels and leaves the outputs as they were.
class NullPanning : public Pan {
public:
    NullPanning();

    /// Whatever the numbers of channels, they become 0.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSourcePosition(unsigned int index, CartesianVector const& position, bool flag) override;
    void SetSourcePositions(CartesianVector const* positions) override;
    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void SetNumInputs(unsigned int newNumInputs) override;
    void SetNumOutputs(unsigned int newNumOutputs) override;
    void SetInterpolationTime(float milliseconds) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;
};

}  // namespace Lume
