#include "decoders/transaural/transaural_decoder_recursive_symmetric.h"

#include <algorithm>
#include <functional>

namespace Lume {

TransauralDecoderRecursiveSymmetric::TransauralDecoderRecursiveSymmetric(unsigned int numberOfInputs,
                                                                         unsigned int numberOfOutputs)
    : TransauralDecoderRecursive(numberOfInputs, numberOfOutputs, hrtfBinauralToTransauralRecursiveSymmetric,
                                 SpeakerPair::symmetric) {}

Decoder* TransauralDecoderRecursiveSymmetric::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return CreateTransauralDecoder<TransauralDecoderRecursiveSymmetric>(numberOfInputs, numberOfOutputs);
}

void TransauralDecoderRecursiveSymmetric::Process(float** outputs, float** inputs, unsigned long numSamples,
                                                  short const* activeInputs) {
    if (!canProcess(activeInputs)) {
        Mute(outputs, numSamples);
        return;
    }
    if (m.size() != numSamples) resize(static_cast<unsigned int>(numSamples));
    runFilter(3, a.data(), inputs[0], numSamples);
    runFilter(4, b.data(), inputs[1], numSamples);
    runFilter(1, m.data(), m.data(), numSamples);
    runFilter(2, n.data(), n.data(), numSamples);
    std::transform(a.begin(), a.end(), n.begin(), outputs[0], std::minus<>());
    std::transform(b.begin(), b.end(), m.begin(), outputs[1], std::minus<>());
    std::copy_n(outputs[0], numSamples, m.begin());
    std::copy_n(outputs[1], numSamples, n.begin());
    if (isRunaway()) fallSilent(outputs, numSamples);
}

}  // namespace Lume
