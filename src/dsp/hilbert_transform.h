#pragma once

#include <algorithm>
#include <iterator>

#include "dsp/signal_processing.h"

namespace orvandsp {

/// Phase splitter: one input, two outputs of flat magnitude that are about 90 degrees apart, output 1 ahead of output
/// 0, over the audio band (at 44.1 kHz within 1 degree from 13 Hz to 12.2 kHz).
///
/// Two chains of six first-order allpass sections each, with poles spread over the band; after S. D. Bedrosian,
/// "Normalized design of 90 degree phase-difference networks", IRE Trans. Circuit Theory 7(2), 1960. The sections are
/// the bilinear transform of analogue ones without prewarping, which is why the pair drifts apart near the top.
class HilbertTransform : public SignalProcessing {
public:
    HilbertTransform();

    /// Writes outputs 0 and 1 from input 0, either of which may be the input's array. With an inactive input both
    /// outputs are cleared and the filters wait. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override { std::fill(std::begin(states), std::end(states), 0.0f); }

private:
    static constexpr unsigned int sectionsPerChain = 6;
    static constexpr unsigned int numSections = 2 * sectionsPerChain;

    void ComputeCoefficients();

    float coefficients[numSections] = {};  // the chain of output 0, then that of output 1
    float states[numSections] = {};
};

}  // namespace orvandsp
