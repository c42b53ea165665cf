#include "decoders/matrix/lrs2lcrs_decoder.h"

#include "decoders/matrix/matrix_constants.h"

namespace Lume {

Decoder* LRS2LCRSDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return numberOfInputs == 3 && numberOfOutputs == 4 ? new LRS2LCRSDecoder : nullptr;
}

void LRS2LCRSDecoder::Process(float** outputs, float** inputs, unsigned long numSamples,
                              short const* /*activeInputs*/) {
    for (unsigned long n = 0; n < numSamples; ++n) {
        const float p = sqrt2div3 * inputs[0][n], q = sqrt2div3 * inputs[1][n], rear = inputs[2][n];
        outputs[0][n] = p;
        outputs[1][n] = (p + q) * sqrt1div2;
        outputs[2][n] = q;
        outputs[3][n] = rear;
    }
}

}  // namespace Lume
