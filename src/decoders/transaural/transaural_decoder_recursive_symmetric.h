#pragma once

#include "decoders/transaural/transaural_decoder_recursive.h"

namespace Lume {

/// The recursive canceller for a symmetric pair of loudspeakers, with the outputs in the loop:
///
///     out0 = F3 in0 - F2 out1', out1 = F4 in1 - F1 out0',
///
/// where a prime marks the block before. With Hi and Hc the responses from a loudspeaker to its near and its far ear,
/// the ears hear the inputs for F3 = F4 = 1 / Hi and F1 = F2 = Hc / Hi without one block of its delay. Its sets hold
/// all four filters.
class TransauralDecoderRecursiveSymmetric : public TransauralDecoderRecursive {
public:
    TransauralDecoderRecursiveSymmetric(unsigned int numInputs, unsigned int numOutputs);
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Clears the outputs without data or with an inactive input. Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
};

}  // namespace Lume
