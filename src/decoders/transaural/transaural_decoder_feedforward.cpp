#include "decoders/transaural/transaural_decoder_feedforward.h"

#include <algorithm>

namespace Lume {

TransauralDecoderFeedforward::TransauralDecoderFeedforward(unsigned int numberOfInputs, unsigned int numberOfOutputs,
                                                           HrtfType type, SpeakerPair pair)
    : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, type, 6, pair) {}

void TransauralDecoderFeedforward::Process(float** outputs, float** inputs, unsigned long numSamples,
                                           short const* activeInputs) {
    if (!canProcess(activeInputs)) {
        std::fill_n(outputs[0], numSamples, 0.0f);
        std::fill_n(outputs[1], numSamples, 0.0f);
        return;
    }
    float** const free = scratch(numSamples);
    runDifference(free[0], 1, inputs[0], 2, inputs[1], numSamples);
    runDifference(free[1], 4, inputs[1], 3, inputs[0], numSamples);
    runFilter(5, outputs[0], free[0], numSamples);
    runFilter(6, outputs[1], free[1], numSamples);
}

}  // namespace Lume
