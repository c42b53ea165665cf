#pragma once

#include <vector>

#include "mix/delay_gain_pair.h"
#include "pan/null_panning.h"
#include "pan/pan.h"

namespace Lume {

/// A spaced pair of directional microphones: each source reaches the two channels with different delays and gains, both
/// of which slide to a new position. The loudspeakers' positions make no difference.
class StereoABPanning : public Pan {
public:
    /// Time of the slides of a new panner [ms].
    static constexpr float DefaultRampTime = 30.0f;

    /// One source's way to the two channels.
    using Voice = DelayGainPair;

    explicit StereoABPanning(unsigned int numInputs, unsigned int numOutputs = 2);

    /// A NullPanning unless there are two outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<StereoABPanning>(requestedOutputs == 2, requestedInputs, requestedOutputs);
    }

    /// With exactly one source that is inactive the outputs stay as they are. Allocates when the number of samples is
    /// larger than it was.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    /// @param flag  jump instead of sliding
    void SetSourcePosition(unsigned int index, CartesianVector const& position, bool flag) override;
    void SetSourcePositions(CartesianVector const* positions) override;
    /// Does nothing.
    void SetLoudspeakerPositions(CartesianVector const* /*positions*/) override {}
    /// Sets all slides back to the default time.
    void SetNumInputs(unsigned int newNumInputs) override;
    /// Does nothing: there are two.
    void SetNumOutputs(unsigned int /*newNumOutputs*/) override {}
    void SetInterpolationTime(float milliseconds) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    /// Silences the delays; gains and slides stay.
    void Clear() override {
        for (Voice& voice : voices) voice.Clear();
    }

private:
    void ResizeBuffers(std::size_t numSamples);
    void AddVoices(float** inputs, unsigned long numSamples, short const* activeInputs);

    std::vector<Voice> voices;  // one per source
    std::vector<float> signalBuffer;
    std::vector<float> gainBuffer;
    std::vector<float> channelBuffers[2];  // the outputs in the making, so that they may be the inputs
};

}  // namespace Lume
