#pragma once

#include "decoders/transaural/filtered_transaural_decoder.h"

namespace Lume {

/// Crosstalk canceller without a loop: the matrix of the ways to the ears, inverted,
///
///     out0 = F5 (F1 in0 - F2 in1), out1 = F6 (F4 in1 - F3 in0).
///
/// With LL, LR, RL and RR the responses from a loudspeaker (first letter) to an ear (second letter), the ears hear the
/// inputs for F1 = RR, F2 = RL, F3 = LR, F4 = LL and F5 = F6 = 1 / (LL RR - LR RL), the inverse determinant; delays
/// common to F1 to F4, or to F5 and F6, may be added.
///
/// As F5 and F6 are the same, all errors of the inverse fall on what both ears hear: with the measured responses of a
/// KEMAR manikin as F1 to F4 crosstalk vanishes (100 dB and more, rounding), and the inverse determinant decides about
/// colour alone.
class TransauralDecoderFeedforward : public FilteredTransauralDecoder {
public:
    /// Clears the outputs without data or with an inactive input. Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

protected:
    TransauralDecoderFeedforward(unsigned int numInputs, unsigned int numOutputs, HrtfType type, SpeakerPair pair);
};

}  // namespace Lume
