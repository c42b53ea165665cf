#include "pan/binaural/binaural_panning_direct.h"

#include <algorithm>

#include "dsp/batch.h"
#include "dsp/constants.h"

namespace Lume {

namespace {

void Scale(float* out, float const* in, unsigned long numSamples) {
    for (unsigned long i = 0; i < numSamples; ++i) out[i] = in[i] * orvandsp::sqrt2div2;
}

}  // namespace

BinauralPanningDirect::BinauralPanningDirect(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : BinauralPanning(numberOfInputs, numberOfOutputs),
      hrtf(std::make_unique<Hrtf>("")),
      earBuffers(orvandsp::kernels::maxLanes, 512) {
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
    const HrtfFiltering::Job ears[] = {{&voices[0].left, earBuffers.GetChannel(0), inputs[0]},
                                       {&voices[0].right, earBuffers.GetChannel(1), inputs[0]}};
    HrtfFiltering::ProcessSeveral(ears, numSamples);
    Scale(outputs[0], ears[0].output, numSamples);
    Scale(outputs[1], ears[1].output, numSamples);
}

void BinauralPanningDirect::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                          short const* activeInputs) {
    const auto addSome = [=, this](std::span<HrtfFiltering::Job const> ears) {
        HrtfFiltering::ProcessSeveral(ears, numSamples);
        using orvandsp::kernels::MixTerm;
        MixTerm terms[orvandsp::kernels::maxLanes];  // all left ears, all right ears
        const std::size_t numSources = ears.size() / 2;
        for (std::uint32_t i = 0; i < numSources; ++i) {
            terms[i] = {2 * i, MixTerm::steady, orvandsp::sqrt2div2};
            terms[numSources + i] = {2 * i + 1, MixTerm::steady, orvandsp::sqrt2div2};
        }
        const std::size_t ends[] = {numSources, 2 * numSources};
        orvandsp::kernels::Get().mix(outputs, 0, 2, {earBuffers.GetChannels(), 0, nullptr}, terms, 0, ends, numSamples,
                                     false);
    };
    orvandsp::Batch<HrtfFiltering::Job, decltype(addSome)> ears(addSome);
    unsigned int buffer = 0;
    for (unsigned int i = 0; i < numInputs; ++i) {
        if (activeInputs[i] == 0) continue;
        for (HrtfFiltering* const ear : {&voices[i].left, &voices[i].right})
            ears.Add({ear, earBuffers.GetChannel(buffer++ % orvandsp::kernels::maxLanes), inputs[i]});
    }
    ears.Finish();
}

void BinauralPanningDirect::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetSamplerate(newSamplerate); });
}

void BinauralPanningDirect::SetMaxBlockSize(unsigned int blockSize) {
    StoreMaxBlockSize(blockSize);
    earBuffers.Resize(orvandsp::kernels::maxLanes, blockSize);
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetMaxBlockSize(blockSize); });
}

void BinauralPanningDirect::SetInterpolationTime(float milliseconds) {
    voices.ForEach([=](HrtfFiltering& ear) { ear.SetInterpolationTime(milliseconds); });
}

}  // namespace Lume
