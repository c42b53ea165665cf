#pragma once

#include "dsp/constants.h"

namespace orvandsp {

/// Frame of every block that touches audio: blocks of non-interleaved single-precision samples in, such blocks out.
///
/// A block lives in two phases. It is built with its structural sizes; then Configure (or SetSamplerate,
/// SetMaxBlockSize, Clear, any number of times) makes room, and Process only computes. Outputs come before inputs in
/// every signature, and the output arrays may be the input arrays.
///
/// Nothing here is synchronised: Configure and SetMaxBlockSize may allocate and must not overlap Process.
class SignalProcessing {
public:
    /// Sample rate of a block that wasn't told another [Hz].
    static constexpr float DefaultSampleRate = 44100.0f;

    SignalProcessing() = default;
    virtual ~SignalProcessing() = default;

    /// Processes one block. Real-time safe.
    /// @param outputs, inputs  one pointer per channel; may be the same arrays
    /// @param numSamples       at most the block size last configured
    /// @param activeInputs     one flag per input, zero for an input that carries no signal; what a block makes of a
    /// zero
    ///                         is its own matter
    virtual void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) = 0;

    /// Copies input i to output i for the channels that both sides have and clears the other outputs. Real-time safe.
    virtual void Bypass(float** outputs, float** inputs, unsigned long numSamples);

    /// Clears the outputs. Real-time safe.
    virtual void Mute(float** outputs, unsigned long numSamples);

    /// Announces sample rate and block size and clears the block if one of the two is new, or always if force is set.
    /// Every call also sets the calling thread's denormal mode. A rate that is not a number counts as the stored one.
    virtual void Configure(float newSamplerate, unsigned int blockSize, bool force);

    /// @param newSamplerate  [Hz]
    virtual void SetSamplerate(float newSamplerate) = 0;

    /// @param blockSize  largest number of samples of one call to Process
    virtual void SetMaxBlockSize(unsigned int blockSize) = 0;

    /// Returns to silence: resets audio memory and keeps every parameter.
    virtual void Clear() = 0;

    unsigned int GetNumInputs() const noexcept { return numInputs; }
    unsigned int GetNumOutputs() const noexcept { return numOutputs; }
    float GetSamplerate() const noexcept { return samplerate; }
    unsigned int GetBuffersize() const noexcept { return buffersize; }

protected:
    SignalProcessing(SignalProcessing const&) = default;
    SignalProcessing& operator=(SignalProcessing const&) = default;

    unsigned int numInputs = 1;
    unsigned int numOutputs = 1;
    float samplerate = DefaultSampleRate;  // [Hz]
    unsigned int buffersize = 512;         // [samples]
};

}  // namespace orvandsp
