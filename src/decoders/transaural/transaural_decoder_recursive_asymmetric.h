#pragma once

#include "decoders/transaural/transaural_decoder_recursive.h"

namespace Lume {

/// The recursive canceller for any pair of loudspeakers, with the equalisers of the loudspeakers behind the loop:
///
///     a = in0 - F1 b', b = in1 - F2 a', out0 = F3 a, out1 = F4 b,
///
/// where a prime marks the block before. With LL, LR, RL and RR the responses from a loudspeaker (first letter) to an
/// ear (second letter), the ears hear the inputs for F1 = RL / RR and F2 = LR / LL, each without one block of its
/// delay, F3 = 1 / LL and F4 = 1 / RR.
class TransauralDecoderRecursiveAsymmetric : public TransauralDecoderRecursive {
public:
    TransauralDecoderRecursiveAsymmetric(unsigned int numInputs, unsigned int numOutputs);
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Clears the outputs without data or with an inactive input. Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
};

}  // namespace Lume
