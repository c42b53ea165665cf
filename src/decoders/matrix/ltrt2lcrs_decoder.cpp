#include "decoders/matrix/ltrt2lcrs_decoder.h"

#include "decoders/matrix/matrix_constants.h"

namespace Lume {

Decoder* LtRt2LCRSDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return numberOfInputs == 2 && numberOfOutputs == 4 ? new LtRt2LCRSDecoder : nullptr;
}

void LtRt2LCRSDecoder::Process(float** outputs, float** inputs, unsigned long numSamples,
                               short const* /*activeInputs*/) {
    for (unsigned long n = 0; n < numSamples; ++n) {
        const float p = sqrt1div2 * inputs[0][n], q = sqrt1div2 * inputs[1][n];
        outputs[0][n] = p;
        outputs[1][n] = (p + q) * sqrt1div2;
        outputs[2][n] = q;
        outputs[3][n] = p - q;
    }
    chain.Process(outputs[3], numSamples);
}

}  // namespace Lume
