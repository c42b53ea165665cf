#include "decoders/matrix/lcrs2lrs_decoder.h"

#include "decoders/matrix/matrix_constants.h"

namespace Lume {

Decoder* LCRS2LRSDecoder::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return numberOfInputs == 4 && numberOfOutputs == 3 ? new LCRS2LRSDecoder : nullptr;
}

void LCRS2LRSDecoder::Process(float** outputs, float** inputs, unsigned long numSamples,
                              short const* /*activeInputs*/) {
    for (unsigned long n = 0; n < numSamples; ++n) {
        const float left = inputs[0][n], centre = inputs[1][n], right = inputs[2][n], rear = inputs[3][n];
        outputs[0][n] = sqrt1div2 * centre + left;
        outputs[1][n] = sqrt1div2 * centre + right;
        outputs[2][n] = rear;
    }
}

}  // namespace Lume
