#include "pan/binaural/snowman_processing.h"

#include <algorithm>

namespace Lume {

SnowmanProcessing::SnowmanProcessing() : directBuffer(buffersize), reflectionBuffer(buffersize) {}

void SnowmanProcessing::SetDirectPath(float delayMs, Coefficients torso, Coefficients head, bool flag) {
    torsoFilter.SetCoefficients(torso, flag);
    headFilter.SetCoefficients(head, flag);
    directDelay.SetDelay(delayMs, flag);
}

void SnowmanProcessing::SetReflectionPath(float delayMs, Coefficients reflection, bool flag) {
    reflectionFilter.SetCoefficients(reflection, flag);
    reflectionDelay.SetDelay(delayMs, flag);
}

void SnowmanProcessing::SetCrossFadeTime(float milliseconds) {
    for (FadedIIRFilter* filter : {&reflectionFilter, &torsoFilter, &headFilter})
        filter->SetCrossFadeTime(milliseconds);
}

void SnowmanProcessing::SetInterpolationTime(float milliseconds) {
    reflectionDelay.SetInterpolationTime(milliseconds);
    directDelay.SetInterpolationTime(milliseconds);
}

void SnowmanProcessing::Process(float* output, float* input, unsigned long numSamples) {
    const int count = static_cast<int>(numSamples);
    float* const direct = directBuffer.data();
    float* const reflection = reflectionBuffer.data();
    for (unsigned long i = 0; i < numSamples; ++i) reflection[i] = input[i] * reflectionCoefficient;

    directDelay.Process(direct, input, count);
    torsoFilter.ProcessBlock(direct, direct, numSamples, false);
    headFilter.ProcessBlock(output, direct, numSamples, false);
    // Also while it isn't heard, so that it is there at once when the source leaves the shadow.
    reflectionDelay.Process(reflection, reflection, count);
    reflectionFilter.ProcessBlock(reflection, reflection, numSamples, false);
    if (shadowed) return;
    const float scale = 1.0f / (reflectionCoefficient + 1.0f);
    for (unsigned long i = 0; i < numSamples; ++i) output[i] = (output[i] + reflection[i]) * scale;
}

void SnowmanProcessing::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    if (activeInputs[0] != 0)
        Process(outputs[0], inputs[0], numSamples);
    else
        std::fill_n(outputs[0], numSamples, 0.0f);
}

void SnowmanProcessing::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    reflectionDelay.SetSamplerate(newSamplerate);
    directDelay.SetSamplerate(newSamplerate);
    for (FadedIIRFilter* filter : {&reflectionFilter, &torsoFilter, &headFilter}) filter->SetSamplerate(newSamplerate);
}

void SnowmanProcessing::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    directBuffer.resize(blockSize);
    reflectionBuffer.resize(blockSize);
    reflectionDelay.SetMaxBlockSize(blockSize);
    directDelay.SetMaxBlockSize(blockSize);
    for (FadedIIRFilter* filter : {&reflectionFilter, &torsoFilter, &headFilter}) filter->SetMaxBlockSize(blockSize);
}

void SnowmanProcessing::Clear() {
    reflectionDelay.Clear();
    directDelay.Clear();
    for (FadedIIRFilter* filter : {&reflectionFilter, &torsoFilter, &headFilter}) filter->Clear();
}

}  // namespace Lume
