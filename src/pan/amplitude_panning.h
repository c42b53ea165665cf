#pragma once

#include "mix/gain_cycle.h"
#include "pan/pan.h"

namespace Lume {

/// Frame of every panner that places a source by gains alone. A subclass says in convert how a position becomes one
/// gain per output; the mixing through the matrix of gains, and its slides, are here.
///
/// A new position is heard in full one to two interpolation times later. All gains start at 0, so that every source
/// fades in.
class AmplitudePanning : public Pan {
public:
    /// Interpolation time of a new panner [ms].
    static constexpr float DefaultInterpolationTime = 30.0f;

    AmplitudePanning(unsigned int numInputs, unsigned int numOutputs);

    /// Converts a position into the gains of one source. It writes nothing but these gains.
    /// @param gains  one per output
    virtual void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) = 0;

    /// Copies the gains that belong to the positions set last, before the signal follows them.
    /// @param gains  numInputs x numOutputs, row by row: a row per source
    void GetGains(float* gains) const;

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    /// The flag makes no difference here.
    void SetSourcePosition(unsigned int index, CartesianVector const& position, bool flag) override;
    void SetSourcePositions(CartesianVector const* positions) override;
    /// Does nothing: for the panners that don't depend on the loudspeakers.
    void SetLoudspeakerPositions(CartesianVector const* /*positions*/) override {}

    /// The numbers of channels may be lowered, and raised again up to those of the constructor: the gains keep their
    /// room.
    void SetNumInputs(unsigned int newNumInputs) override;
    void SetNumOutputs(unsigned int newNumOutputs) override { numOutputs = newNumOutputs; }

    void SetInterpolationTime(float milliseconds) override { cycle.SetLength(0.001f * samplerate * milliseconds); }
    /// Keeps the interpolation time, and how much of the running one has passed.
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    /// Does nothing: gains and slides are no audio memory.
    void Clear() override {}

private:
    GainCycle cycle;
};

}  // namespace Lume
