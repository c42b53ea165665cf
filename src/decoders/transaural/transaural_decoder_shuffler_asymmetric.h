#pragma once

#include "decoders/transaural/filtered_transaural_decoder.h"

namespace Lume {

/// Crosstalk canceller for any pair of loudspeakers, on the sum s and the difference d of the ears' signals:
///
///     out0 = F5 (F1 d + F3 s), out1 = F6 (F4 s - F2 d).
///
/// With LL, LR, RL and RR the responses from a loudspeaker (first letter) to an ear (second letter), the ears hear the
/// inputs for F1 = (RR + RL) / 2, F2 = (LL + LR) / 2, F3 = (RR - RL) / 2, F4 = (LL - LR) / 2 and
/// F5 = F6 = 1 / (LL RR - LR RL); delays common to F1 to F4, or to F5 and F6, may be added.
///
/// As F5 and F6 are the same, all errors of the inverse fall on what both ears hear: with the measured responses of a
/// KEMAR manikin as F1 to F4 crosstalk vanishes (100 dB and more, rounding), and the inverse determinant decides about
/// colour alone.
class TransauralDecoderShufflerAsymmetric : public FilteredTransauralDecoder {
public:
    TransauralDecoderShufflerAsymmetric(unsigned int numInputs, unsigned int numOutputs);
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Clears the outputs without data or with an inactive input. Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
};

}  // namespace Lume
