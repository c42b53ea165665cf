#include "decoders/transaural/transaural_decoder_recursive_asymmetric.h"

#include <algorithm>
#include <functional>

namespace Lume {

TransauralDecoderRecursiveAsymmetric::TransauralDecoderRecursiveAsymmetric(unsigned int numberOfInputs,
                                                                           unsigned int numberOfOutputs)
    : TransauralDecoderRecursive(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralRecursiveAsymmetric,
                                 SpeakerPair::asymmetric) {}

Decoder* TransauralDecoderRecursiveAsymmetric::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return CreateTransauralDecoder<TransauralDecoderRecursiveAsymmetric>(numberOfInputs, numberOfOutputs);
}

void TransauralDecoderRecursiveAsymmetric::Process(float** outputs, float** inputs, unsigned long numSamples,
                                                   short const* activeInputs) {
    if (!canProcess(activeInputs)) {
        Mute(outputs, numSamples);
        return;
    }
    if (m.size() != numSamples) resize(static_cast<unsigned int>(numSamples));
    runFilter(2, m.data(), m.data(), numSamples);
    runFilter(1, n.data(), n.data(), numSamples);
    std::transform(inputs[0], inputs[0] + numSamples, n.begin(), a.begin(), std::minus<>());
    std::transform(inputs[1], inputs[1] + numSamples, m.begin(), b.begin(), std::minus<>());
    std::copy(a.begin(), a.end(), m.begin());
    std::copy(b.begin(), b.end(), n.begin());
    if (isRunaway()) {
        fallSilent(outputs, numSamples);
        return;
    }
    runFilter(3, outputs[0], a.data(), numSamples);
    runFilter(4, outputs[1], b.data(), numSamples);
}

}  // namespace Lume
