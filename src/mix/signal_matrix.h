#pragma once

#include "dsp/signal_processing.h"
#include "math/matrix.h"
#include "mix/gain_cycle.h"

namespace Lume {

/// Mixes N inputs into M outputs through a matrix of gains (a row per input), whose changes slide.
///
/// New gains take between one and two ramp times to be heard in full; a new mixer is silent and fades in.
class SignalMatrix : public orvandsp::SignalProcessing {
public:
    /// Ramp time of a new mixer [ms].
    static constexpr float DefaultRampTime = 30.0f;

    SignalMatrix(unsigned int numInputs, unsigned int numOutputs);

    /// @param milliseconds  cut to whole samples, at least one
    void SetRampTime(float milliseconds);

    /// Sets one gain. The indices aren't checked.
    void SetGain(unsigned int input, unsigned int output, float gain);
    /// Sets all gains to one value.
    void SetGains(float gain);
    /// Sets all gains. @param gains  N x M, row by row
    void SetGains(float const* gains);
    /// @param gains  at least N x M; what lies beyond isn't read
    void SetGains(orvandsp::Matrix<float> const& gains);
    /// Sets the gains from the beginning of a row to the end of the matrix, not of the row (kept: quirks.md 19).
    /// @param row    nothing happens when it is no input
    /// @param gains  N x M floats for row 0, M fewer for each row further down
    void SetRowGains(unsigned int row, float const* gains);
    /// Sets the gains of one output. The column isn't checked. @param gains  one per input
    void SetColumnGains(unsigned int column, float const* gains);

    /// The gains that the running ramp ends at. @param gains  becomes N x M
    void GetGains(orvandsp::Matrix<float>& gains) const;

    /// Leaves every output defined: without an active input the outputs are cleared, and the ramp stands still.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// Adds to the outputs. The ramp goes on without an active input. Real-time safe.
    virtual void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs);

    /// Keeps the ramp time, and how much of the running one has passed.
    void SetSamplerate(float newSamplerate) override;
    /// Does nothing: blocks may have any size.
    void SetMaxBlockSize(unsigned int blockSize) override;
    /// Does nothing: gains and ramps are no audio memory.
    void Clear() override;

private:
    GainCycle cycle;
};

}  // namespace Lume
