#pragma once

#include <vector>

#include "decoders/transaural/filtered_transaural_decoder.h"

namespace Lume {

/// Frame of the crosstalk cancellers that subtract from each side what the other side has sent before: the inverse of
/// the matrix of the ways to the ears as a loop, whose filters need no inverse determinant.
///
/// The loop works block by block: what was sent reaches the other side one block late, in addition to the filters of
/// the loop. A set is therefore made for a block length, at which the filters of the loop hold what the crosstalk is
/// late by beyond one block. That has to be positive: with loudspeakers at 30 degrees crosstalk is about 0.25 ms late,
/// which allows blocks of 8 samples at 44.1 kHz. With longer blocks the loop comes too late to cancel anything.
///
/// With filters of 512 samples that `orvanverb hrtf transaural` fits to the measured responses of a KEMAR manikin,
/// crosstalk falls by so much, on average from 200 Hz to 8 kHz with each Hz weighted alike, at 44.1 kHz:
///
///     samples of a block     1       2       4       8      16      32
///     at 20 degrees       26 dB   28 dB   18 dB    5 dB    0 dB    0 dB
///     at 30 degrees       21 dB   26 dB   30 dB   17 dB    0 dB    0 dB
///     at 60 degrees       31 dB   24 dB   25 dB   27 dB   21 dB    0 dB
///     at 90 degrees       33 dB   36 dB   34 dB   30 dB   33 dB    4 dB
///
/// The ups and downs are those of notches at single ears; at twice the rate blocks may be twice as long.
///
/// A loop whose gain is above 1 runs away. Once it is 40 dB above full scale, where no signal gets by other means, it
/// falls silent, forgets everything and starts anew.
class TransauralDecoderRecursive : public FilteredTransauralDecoder {
public:
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

protected:
    TransauralDecoderRecursive(unsigned int numInputs, unsigned int numOutputs, HrtfType type, SpeakerPair pair);

    /// Gives the buffers another length; what they held stays.
    void resize(unsigned int numSamples) {
        for (auto* const buffer : {&m, &n, &a, &b}) buffer->resize(numSamples);
    }
    /// Whether the loop has run away, by what is about to go around.
    bool isRunaway() const noexcept;
    /// Silences the outputs and the loop.
    void fallSilent(float** outputs, unsigned long numSamples);

    std::vector<float> m, n;  // what each side sends to the other, one block later
    std::vector<float> a, b;  // the two sides within a block
};

/// The recursive canceller for a symmetric pair of loudspeakers, with the outputs in the loop:
///
///     out0 = F3 in0 - F2 out1', out1 = F4 in1 - F1 out0',
///
/// where a prime marks the block before. With Hi and Hc the responses from a loudspeaker to its near and its far ear,
/// the ears hear the inputs for F3 = F4 = 1 / Hi and F1 = F2 = Hc / Hi without one block of its delay. Its sets hold
/// all four filters.
class TransauralDecoderRecursiveSymmetric : public TransauralDecoderRecursive {
public:
    TransauralDecoderRecursiveSymmetric(unsigned int numberOfInputs, unsigned int numberOfOutputs)
        : TransauralDecoderRecursive(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralRecursiveSymmetric,
                                     SpeakerPair::symmetric) {}
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return CreateTransauralDecoder<TransauralDecoderRecursiveSymmetric>(numInputs, numOutputs);
    }

protected:
    void runNetwork(float** outputs, float** inputs, unsigned long numSamples) override;
};

/// The recursive canceller for any pair of loudspeakers, with the equalisers of the loudspeakers behind the loop:
///
///     a = in0 - F1 b', b = in1 - F2 a', out0 = F3 a, out1 = F4 b,
///
/// where a prime marks the block before. With LL, LR, RL and RR the responses from a loudspeaker (first letter) to an
/// ear (second letter), the ears hear the inputs for F1 = RL / RR and F2 = LR / LL, each without one block of its
/// delay, F3 = 1 / LL and F4 = 1 / RR.
class TransauralDecoderRecursiveAsymmetric : public TransauralDecoderRecursive {
public:
    TransauralDecoderRecursiveAsymmetric(unsigned int numberOfInputs, unsigned int numberOfOutputs)
        : TransauralDecoderRecursive(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralRecursiveAsymmetric,
                                     SpeakerPair::asymmetric) {}
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return CreateTransauralDecoder<TransauralDecoderRecursiveAsymmetric>(numInputs, numOutputs);
    }

protected:
    void runNetwork(float** outputs, float** inputs, unsigned long numSamples) override;
};

}  // namespace Lume
