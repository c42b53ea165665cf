#include "decoders/matrix/surround_chain.h"

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

void SurroundChain::SetSamplerate(float samplerate) {
    delay.SetSamplerate(samplerate);
    shelf.SetSamplerate(samplerate);
    lowPass.SetSamplerate(samplerate);
}

void SurroundChain::SetMaxBlockSize(unsigned int blockSize) {
    delay.SetMaxBlockSize(blockSize);
    shelf.SetMaxBlockSize(blockSize);
    lowPass.SetMaxBlockSize(blockSize);
}

void SurroundChain::Clear() {
    delay.Clear();
    shelf.Clear();
    lowPass.Clear();
}

}  // namespace Lume
