#include "decoders/matrix/matrix_decoders.h"

#include "decoders/null_decoder.h"
#include "dsp/constants.h"

namespace Lume {

namespace {

constexpr float delayMs = 15.0f;

}  // namespace

SurroundChain::SurroundChain() : delay(delayMs, Delay::DefaultInterpolationMode) {
    delay.SetDelay(delayMs, true);
    shelf.SetAll(-3.0f, -18.0f, 0.0f, -5.0f, 35.0f, 2000.0f);
    lowPass.SetCutOffFrequency(7000.0f);
    lowPass.SetDamping(orvandsp::sqrt2);
}

void SurroundChain::Process(float* samples, unsigned long numSamples) {
    delay.Process(samples, samples, static_cast<int>(numSamples));
    shelf.Process(samples, samples, numSamples);
    lowPass.Process(samples, samples, numSamples);
}

MatrixDecoder::MatrixDecoder(MatrixFormat const& format, bool hasSurroundChain) : table(format) {
    initDecoder(format.numInputs, format.numOutputs);
    if (hasSurroundChain) chain.emplace();
}

void MatrixDecoder::Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) {
    table.Mix(outputs, inputs, numSamples);
    if (chain) chain->Process(outputs[numOutputs - 1], numSamples);
}

void MatrixDecoder::SetSamplerate(float newSamplerate) {
    FixedDecoder::SetSamplerate(newSamplerate);
    if (chain) chain->ForEach([=](auto& stage) { stage.SetSamplerate(newSamplerate); });
}

void MatrixDecoder::SetMaxBlockSize(unsigned int blockSize) {
    FixedDecoder::SetMaxBlockSize(blockSize);
    if (chain) chain->ForEach([=](auto& stage) { stage.SetMaxBlockSize(blockSize); });
}

Decoder* CreateSurroundDecoder(unsigned int numInputs, unsigned int numOutputs) {
    // Each makes itself for its own pair of counts, and null for any other.
    for (auto* create : {LtRt2LRSDecoder::Create, LtRt2LCRSDecoder::Create, LRS2LtRtDecoder::Create,
                         LRS2LCRSDecoder::Create, LCRS2LtRtDecoder::Create, LCRS2LRSDecoder::Create})
        if (Decoder* const decoder = create(numInputs, numOutputs)) return decoder;
    return NullDecoder::Create(numInputs, numOutputs);
}

}  // namespace Lume
