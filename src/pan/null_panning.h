#pragma once

#include "pan/pan.h"

namespace Lume {

/// The panner that stands in where no real one can be made. It has no channels and leaves the outputs as they were
/// (kept: quirks.md 18).
class NullPanning : public Pan {
public:
    NullPanning() { SetNumInputs(0), SetNumOutputs(0); }

    void Process(float** /*outputs*/, float** /*inputs*/, unsigned long /*numSamples*/,
                 short const* /*activeInputs*/) override {}
    void ProcessAdding(float** /*outputs*/, float** /*inputs*/, unsigned long /*numSamples*/,
                       short const* /*activeInputs*/) override {}
    void SetSourcePosition(unsigned int /*index*/, CartesianVector const& /*position*/, bool /*flag*/) override {}
    void SetSourcePositions(CartesianVector const* /*positions*/) override {}
    void SetLoudspeakerPositions(CartesianVector const* /*positions*/) override {}
    /// Whatever the number, it becomes 0.
    void SetNumInputs(unsigned int /*newNumInputs*/) final { numInputs = 0; }
    void SetNumOutputs(unsigned int /*newNumOutputs*/) final { numOutputs = 0; }
    void SetInterpolationTime(float /*milliseconds*/) override {}
    void SetSamplerate(float newSamplerate) override { samplerate = newSamplerate; }
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override {}

    static Pan* Create(unsigned int /*requestedInputs*/, unsigned int /*requestedOutputs*/) { return new NullPanning; }
};

/// A panner for numbers of channels, or the stand-in where they don't suit it.
template <typename Panner>
Pan* CreateIf(bool suits, unsigned int numInputs, unsigned int numOutputs) {
    if (!suits) return new NullPanning;
    return new Panner(numInputs, numOutputs);
}

}  // namespace Lume
