#include "pan/binaural/binaural_panning_iacc.h"

#include <cmath>

#include "dsp/batch.h"
#include "dsp/constants.h"
#include "dsp/vector_operations.h"
#include "filters/cascade_batch.h"

namespace Lume {

namespace {

constexpr unsigned int numStages = 2;

// Sum and difference of the two ears of a KEMAR head in a diffuse field, at 44.1 kHz: gain, and then b1, b2, a1, a2 of
// each stage. Near 0 Hz the ears agree and the difference is weak, at high frequencies both are alike.
constexpr float ISCC_4_4_KEMAR_diffuse_44[] = {0.501261f,  -1.933375f, 0.947239f,  -1.926606f, 0.940695f,
                                               -1.949527f, 0.950952f,  -1.961725f, 0.962924f};
constexpr float IDCC_4_4_KEMAR_diffuse_44[] = {0.496764f,  -1.917755f, 0.931358f,  -1.924767f, 0.938100f,
                                               -1.980399f, 0.981319f,  -1.960149f, 0.961326f};

}  // namespace

BinauralPanningIACC::BinauralPanningIACC(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : BinauralPanning(numberOfInputs, numberOfOutputs), sumFilter(1), differenceFilter(1) {
    sumFilter.SetNumStages(numStages);
    differenceFilter.SetNumStages(numStages);
    sumBuffer.reserve(512);
    differenceBuffer.reserve(512);
    LoadTables();
}

BinauralPanningIACC::BinauralPanningIACC(unsigned int numberOfInputs, unsigned int numberOfOutputs,
                                         orvandsp::Matrix<float> const& sumAndDifference)
    : BinauralPanningIACC(numberOfInputs, numberOfOutputs) {
    mixer = std::make_unique<SignalMatrix>(numInputs, 2);
    mixer->SetGains(sumAndDifference);
}

void BinauralPanningIACC::LoadTables() {
    sumFilter.SetCoefficients(ISCC_4_4_KEMAR_diffuse_44, false);
    differenceFilter.SetCoefficients(IDCC_4_4_KEMAR_diffuse_44, false);
}

void BinauralPanningIACC::setSourceRelativePosition(unsigned int /*index*/, CartesianVector const& /*position*/,
                                                    bool /*flag*/) {}

void BinauralPanningIACC::SetInterpolationTime(float /*milliseconds*/) {}

void BinauralPanningIACC::SetNumInputs(unsigned int /*newNumInputs*/) {}

void BinauralPanningIACC::SetFilterCrossFadeTime(float milliseconds) {
    sumFilter.SetCrossFadeTime(milliseconds);
    differenceFilter.SetCrossFadeTime(milliseconds);
}

bool BinauralPanningIACC::Mix(float** inputs, unsigned long numSamples) {
    if (sumBuffer.size() != numSamples) sumBuffer.resize(numSamples);
    if (differenceBuffer.size() != numSamples) differenceBuffer.resize(numSamples);
    if (!mixer) return false;
    float* both[] = {sumBuffer.data(), differenceBuffer.data()};
    mixer->Process(both, inputs, numSamples, orvandsp::allActiveInputs);
    return true;
}

void BinauralPanningIACC::Filter(unsigned long numSamples) {
    const auto filterBoth = [numSamples](auto jobs) { FilterCascades(jobs, numSamples); };
    orvandsp::Batch<CascadeJob, decltype(filterBoth)> cascades(filterBoth);
    sumFilter.BeginBlock(sumBuffer.data(), sumBuffer.data(), numSamples, cascades);
    differenceFilter.BeginBlock(differenceBuffer.data(), differenceBuffer.data(), numSamples, cascades);
    cascades.Finish();
    orvandsp::FadeGains gains;
    sumFilter.FinishBlock(sumBuffer.data(), numSamples, gains);
    differenceFilter.FinishBlock(differenceBuffer.data(), numSamples, gains);
}

void BinauralPanningIACC::Process(float** outputs, float** inputs, unsigned long numSamples,
                                  short const* activeInputs) {
    const bool firstActive = activeInputs[0] != 0;
    const bool secondActive = activeInputs[1] != 0;
    if (!firstActive && !secondActive && !mixer) {
        Silence(outputs, numSamples);
        return;
    }
    constexpr float k = orvandsp::sqrt2;
    const bool mixed = Mix(inputs, numSamples);
    float* const sum = sumBuffer.data();
    float* const difference = differenceBuffer.data();
    if (!mixed && firstActive && secondActive) {
        orvandsp::SumDiffMul(sum, difference, inputs[0], inputs[1], k, numSamples);
    } else if (!mixed && firstActive) {
        for (unsigned long i = 0; i < numSamples; ++i) sum[i] = difference[i] = inputs[0][i] * k;
    } else if (!mixed) {
        for (unsigned long i = 0; i < numSamples; ++i) {
            sum[i] = inputs[1][i] * k;
            difference[i] = inputs[1][i] * -k;
        }
    }
    Filter(numSamples);
    orvandsp::SumDiff(outputs[0], outputs[1], sum, difference, numSamples);
}

void BinauralPanningIACC::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                        short const* /*activeInputs*/) {
    if (!Mix(inputs, numSamples)) {
        const float k = std::sqrt(static_cast<float>(numInputs) * 0.5f) * orvandsp::sqrt2;
        orvandsp::SumDiffMul(sumBuffer.data(), differenceBuffer.data(), inputs[0], inputs[1], k, numSamples);
    }
    Filter(numSamples);
    for (unsigned long i = 0; i < numSamples; ++i) {
        outputs[0][i] = outputs[0][i] + sumBuffer[i] + differenceBuffer[i];
        outputs[1][i] = outputs[1][i] + sumBuffer[i] - differenceBuffer[i];
    }
}

void BinauralPanningIACC::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    if (mixer) mixer->SetSamplerate(newSamplerate);
    sumFilter.SetSamplerate(newSamplerate);
    differenceFilter.SetSamplerate(newSamplerate);
    LoadTables();
}

void BinauralPanningIACC::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    if (sumBuffer.size() < blockSize) sumBuffer.resize(blockSize);
    if (differenceBuffer.size() < blockSize) differenceBuffer.resize(blockSize);
    sumFilter.SetMaxBlockSize(blockSize);
    differenceFilter.SetMaxBlockSize(blockSize);
}

void BinauralPanningIACC::Clear() {
    sumFilter.Clear();
    differenceFilter.Clear();
}

}  // namespace Lume
