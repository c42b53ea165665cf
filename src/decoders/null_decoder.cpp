#include "decoders/null_decoder.h"

namespace Lume {

NullDecoder::NullDecoder(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    initDecoder(numberOfInputs, numberOfOutputs);
}

Decoder* NullDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return new NullDecoder(numberOfInputs, numberOfOutputs);
}

void NullDecoder::Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) {
    Bypass(outputs, inputs, numSamples);
}

}  // namespace Lume
