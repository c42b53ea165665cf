#include "pan/binaural/binaural_panning_direct.h"

#include <utility>

#include "dsp/constants.h"
#include "kernels/kernels.h"

namespace Lume {

namespace {

void Scale(float* out, float const* in, unsigned long numSamples) {
    for (unsigned long i = 0; i < numSamples; ++i) out[i] = in[i] * orvandsp::sqrt2div2;
}

}  // namespace

BinauralPanningDirect::BinauralPanningDirect(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : BinauralPanning(numberOfInputs, numberOfOutputs),
      hrtf(std::make_unique<Hrtf>("")),
      leftEars(numberOfInputs, buffersize),
      rightEars(numberOfInputs, buffersize) {
    BinauralPanningDirect::SetNumInputs(numberOfInputs);
}

void BinauralPanningDirect::SetNumInputs(unsigned int newNumInputs) {
    BinauralPanning::SetNumInputs(newNumInputs);
    const auto prepare = [this](HrtfFiltering& ear) {
        ear.SetFilterType(filterType);
        ear.SetNumCoefficients(numCoefficients);
        ear.Configure(samplerate, buffersize, false);
    };
    voices.Resize(newNumInputs, prepare, HrtfFiltering::DefaultHrtfFilterType, true);
    leftEars.Resize(newNumInputs, buffersize);
    rightEars.Resize(newNumInputs, buffersize);
}

bool BinauralPanningDirect::SetHrtf(std::unique_ptr<Hrtf> newHrtf) {
    HrtfHeaderInfos const& infos = newHrtf->GetHrtfHeaderInfos();
    const bool isFir = infos.filterType == hrtfFIR;
    // A set without points or coefficients has nothing to hear.
    const bool suits = infos.hrtfType == hrtfBinaural && infos.numChannels == 2 &&
                       (isFir || infos.filterType == hrtfBiquadCells) && infos.numCoefficients > 0 &&
                       infos.numPoints > 0;
    if (!suits) return false;

    setHrtfFilterType(isFir ? firFilter : biquadFilters);
    hrtf = std::move(newHrtf);
    numCoefficients = hrtf->GetNumCoefficients();
    voices.ForEach([this](HrtfFiltering& ear) { ear.SetNumCoefficients(numCoefficients); });
    forceUpdate(false);
    return true;
}

void BinauralPanningDirect::SetFilterCrossFadeTime(float milliseconds) {
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetCrossFadeTime(milliseconds); });
}

void BinauralPanningDirect::SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation) {
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetFIRFiltersImplementationMethod(implementation); });
    forceUpdate(false);
}

void BinauralPanningDirect::setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) {
    HrtfPoint const& point = hrtf->GetNearestHrtfPoint(position);
    float leftDelay, rightDelay;
    getMonauralDelays(position, point, leftDelay, rightDelay);
    auto& voice = voices[index];
    voice.left.SetDelay(leftDelay, flag);
    voice.right.SetDelay(rightDelay, flag);
    voice.left.SetCoefficients(EarCoefficients(point, 0), flag);
    voice.right.SetCoefficients(EarCoefficients(point, 1), flag);
}

void BinauralPanningDirect::setHrtfFilterType(HRTFFilterType type) {
    filterType = type;
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetFilterType(type); });
}

void BinauralPanningDirect::Process(float** outputs, float** inputs, unsigned long numSamples,
                                    short const* activeInputs) {
    if (numInputs != 1) {
        ProcessOntoSilence(outputs, inputs, numSamples, activeInputs);
        return;
    }
    if (activeInputs[0] == 0) {
        Silence(outputs, numSamples);
        return;
    }
    // Both ears read before either is written: an output may be the input.
    const HrtfFiltering::Job ears[] = {{&voices[0].left, leftEars.GetChannel(0), inputs[0]},
                                       {&voices[0].right, rightEars.GetChannel(0), inputs[0]}};
    HrtfFiltering::ProcessSeveral(ears, numSamples);
    Scale(outputs[0], ears[0].output, numSamples);
    Scale(outputs[1], ears[1].output, numSamples);
}

void BinauralPanningDirect::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                          short const* activeInputs) {
    HrtfFiltering::Job ways[2 * orvandsp::MaxNumChannels];
    orvandsp::kernels::MixTerm terms[orvandsp::MaxNumChannels];
    std::size_t numActive = 0;
    for (unsigned int i = 0; i < numInputs; ++i) {
        if (activeInputs[i] == 0) continue;
        ways[2 * numActive] = {&voices[i].left, leftEars.GetChannel(i), inputs[i]};
        ways[2 * numActive + 1] = {&voices[i].right, rightEars.GetChannel(i), inputs[i]};
        terms[numActive++] = {i, orvandsp::kernels::MixTerm::steady, orvandsp::sqrt2div2};
    }
    HrtfFiltering::ProcessSeveral({ways, 2 * numActive}, numSamples);
    for (auto const& [output, ears] : {std::pair(outputs[0], &leftEars), std::pair(outputs[1], &rightEars)})
        orvandsp::kernels::Get().mix(&output, 0, 1, {ears->GetChannels(), 0, nullptr}, terms, 0, &numActive, numSamples,
                                     false);
}

void BinauralPanningDirect::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetSamplerate(newSamplerate); });
}

void BinauralPanningDirect::SetMaxBlockSize(unsigned int blockSize) {
    StoreMaxBlockSize(blockSize);
    leftEars.Resize(numInputs, blockSize);
    rightEars.Resize(numInputs, blockSize);
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetMaxBlockSize(blockSize); });
}

void BinauralPanningDirect::SetInterpolationTime(float milliseconds) {
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetInterpolationTime(milliseconds); });
}

}  // namespace Lume
