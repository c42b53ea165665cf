#pragma once

#include "decoders/fixed_decoder.h"

namespace Lume {

/// Hands on the channels that both sides have and clears the other outputs; stands in where no decoder can be made.
class NullDecoder : public FixedDecoder {
public:
    NullDecoder(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
        initDecoder(numberOfInputs, numberOfOutputs);
    }

    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return new NullDecoder(numInputs, numOutputs);
    }

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) override {
        Bypass(outputs, inputs, numSamples);
    }
};

}  // namespace Lume
