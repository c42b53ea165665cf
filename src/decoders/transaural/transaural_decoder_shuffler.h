#pragma once

#include "decoders/transaural/filtered_transaural_decoder.h"

namespace Lume {

/// Crosstalk canceller for a symmetric pair of loudspeakers, which filters the sum and the difference of the ears'
/// signals (Cooper and Bauck, "Prospects for transaural recording", J. Audio Eng. Soc. 37, 1989):
///
///     s = F1 (in0 + in1), d = F2 (in0 - in1), out0 = sqrt(2) (s + d), out1 = sqrt(2) (s - d).
///
/// With Hi and Hc the responses from a loudspeaker to its near and its far ear, the ears hear the inputs for
/// F1 = 1 / (2 sqrt(2) (Hi + Hc)) and F2 = 1 / (2 sqrt(2) (Hi - Hc)), and a delay common to both may be added. It has a
/// built-in set, and needs the least of all members: two filters, and no loop.
///
/// On a KEMAR manikin the built-in set takes 21.2 dB off the crosstalk at 30 degrees, on average from 200 Hz to 8 kHz
/// on a logarithmic axis. It has a point every 10 degrees; halfway between two of them crosstalk falls by 6 to 17 dB
/// alone. `orvanverb hrtf transaural` makes denser sets.
class TransauralDecoderShufflerSymmetric : public FilteredTransauralDecoder {
public:
    TransauralDecoderShufflerSymmetric(unsigned int numberOfInputs, unsigned int numberOfOutputs)
        : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralShufflerSymmetric, 2,
                                    SpeakerPair::symmetric) {}
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return CreateTransauralDecoder<TransauralDecoderShufflerSymmetric>(numInputs, numOutputs);
    }

protected:
    void runNetwork(float** outputs, float** inputs, unsigned long numSamples) override;
};

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
    TransauralDecoderShufflerAsymmetric(unsigned int numberOfInputs, unsigned int numberOfOutputs)
        : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralShufflerAsymmetric, 6,
                                    SpeakerPair::asymmetric) {}
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return CreateTransauralDecoder<TransauralDecoderShufflerAsymmetric>(numInputs, numOutputs);
    }

protected:
    void runNetwork(float** outputs, float** inputs, unsigned long numSamples) override;
};

}  // namespace Lume
