#include "decoders/matrix/ltrt2lrs_decoder.h"

#include "decoders/matrix/matrix_constants.h"

namespace Lume {

Decoder* LtRt2LRSDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return numberOfInputs == 2 && numberOfOutputs == 3 ? new LtRt2LRSDecoder : nullptr;
}

void LtRt2LRSDecoder::Process(float** outputs, float** inputs, unsigned long numSamples,
                              short const* /*activeInputs*/) {
    for (unsigned long n = 0; n < numSamples; ++n) {
        const float p = sqrt2div3 * inputs[0][n], q = sqrt2div3 * inputs[1][n];
        outputs[0][n] = p;
        outputs[1][n] = q;
        outputs[2][n] = p - q;
    }
    chain.Process(outputs[2], numSamples);
}

}  // namespace Lume
