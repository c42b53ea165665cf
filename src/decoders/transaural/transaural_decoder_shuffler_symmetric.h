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
    TransauralDecoderShufflerSymmetric(unsigned int numInputs, unsigned int numOutputs);
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Clears the outputs without data or with an inactive input. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
};

}  // namespace Lume
