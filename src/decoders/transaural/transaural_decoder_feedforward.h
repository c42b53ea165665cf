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
protected:
    TransauralDecoderFeedforward(unsigned int numberOfInputs, unsigned int numberOfOutputs, HrtfType type,
                                 SpeakerPair pair)
        : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, type, 6, pair) {}

    void runNetwork(float** outputs, float** inputs, unsigned long numSamples) override;
};

/// The feed-forward canceller for a symmetric pair of loudspeakers. Its sets hold all six filters, though F1 and F4, F2
/// and F3, F5 and F6 are the same.
class TransauralDecoderFeedforwardSymmetric : public TransauralDecoderFeedforward {
public:
    TransauralDecoderFeedforwardSymmetric(unsigned int numberOfInputs, unsigned int numberOfOutputs)
        : TransauralDecoderFeedforward(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralFeedForwardSymmetric,
                                       SpeakerPair::symmetric) {}
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return CreateTransauralDecoder<TransauralDecoderFeedforwardSymmetric>(numInputs, numOutputs);
    }
};

/// The feed-forward canceller for any pair of loudspeakers.
class TransauralDecoderFeedforwardAsymmetric : public TransauralDecoderFeedforward {
public:
    TransauralDecoderFeedforwardAsymmetric(unsigned int numberOfInputs, unsigned int numberOfOutputs)
        : TransauralDecoderFeedforward(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralFeedForwardAsymmetric,
                                       SpeakerPair::asymmetric) {}
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return CreateTransauralDecoder<TransauralDecoderFeedforwardAsymmetric>(numInputs, numOutputs);
    }
};

}  // namespace Lume
