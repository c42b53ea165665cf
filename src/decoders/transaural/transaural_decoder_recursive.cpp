#include "decoders/transaural/transaural_decoder_recursive.h"

#include <algorithm>
#include <cmath>

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

void TransauralDecoderRecursive::resize(unsigned int numSamples) {
    for (auto* const buffer : {&m, &n, &a, &b}) buffer->resize(numSamples);
}

bool TransauralDecoderRecursive::isRunaway() const noexcept {
    return IsOutOfHand(m) || IsOutOfHand(n);
}

void TransauralDecoderRecursive::fallSilent(float** outputs, unsigned long numSamples) {
    Clear();
    Mute(outputs, numSamples);
}

}  // namespace Lume
