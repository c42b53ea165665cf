#include "decoders/transaural/transaural_decoder_recursive.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace Lume {

namespace {

constexpr float runawayLevel = 100.0f;

/// Written as "not inside", so that not a number counts too.
bool IsOutOfHand(std::vector<float> const& block) noexcept {
    return std::any_of(block.begin(), block.end(), [](float x) { return !(std::abs(x) <= runawayLevel); });
}

}  // namespace

TransauralDecoderRecursive::TransauralDecoderRecursive(unsigned int numberOfInputs, unsigned int numberOfOutputs,
                                                       HrtfType type, SpeakerPair pair)
    : FilteredTransauralDecoder(numberOfInputs, numberOfOutputs, type, 4, pair) {
    resize(buffersize);
}

void TransauralDecoderRecursive::SetMaxBlockSize(unsigned int blockSize) {
    FilteredTransauralDecoder::SetMaxBlockSize(blockSize);
    resize(blockSize);
}

void TransauralDecoderRecursive::Clear() {
    FilteredTransauralDecoder::Clear();
    for (auto* const buffer : {&m, &n, &a, &b}) std::fill(buffer->begin(), buffer->end(), 0.0f);
}

bool TransauralDecoderRecursive::isRunaway() const noexcept {
    return IsOutOfHand(m) || IsOutOfHand(n);
}

void TransauralDecoderRecursive::fallSilent(float** outputs, unsigned long numSamples) {
    Clear();
    Mute(outputs, numSamples);
}

void TransauralDecoderRecursiveSymmetric::runNetwork(float** outputs, float** inputs, unsigned long numSamples) {
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

void TransauralDecoderRecursiveAsymmetric::runNetwork(float** outputs, float** inputs, unsigned long numSamples) {
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
