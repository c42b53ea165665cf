#include "reverb/early.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "reverb/delgen.h"

namespace Lume {

Early::Voice::Voice(unsigned int numTaps)
    // Tiny on purpose: the first delay that doesn't fit makes the line as long as needed.
    : delay(std::make_unique<Delay>(1.0f, Delay::DefaultInterpolationMode)), taps(numTaps, TapOut(delay.get())) {}

void Early::Voice::Resize(unsigned int numTaps) {
    TapOut fresh(delay.get());
    fresh.SetSamplerate(delay->GetSamplerate());
    taps.resize(numTaps, fresh);
}

void Early::Voice::SetInterpolationMode(Delay::InterpolationMode mode) {
    delay->SetInterpolationMode(mode);
    for (TapOut& tap : taps) tap.SetInterpolationMode(mode);
}

void Early::Voice::SetInterpolationTime(float ms) {
    for (TapOut& tap : taps) tap.SetInterpolationTime(ms);
}

void Early::Voice::SetSamplerate(float samplerate) {
    delay->SetSamplerate(samplerate);
    for (TapOut& tap : taps) tap.SetSamplerate(samplerate);
}

void Early::Voice::SetMaxBlockSize(unsigned int blockSize) {
    delay->SetMaxBlockSize(blockSize);
    for (TapOut& tap : taps) tap.SetMaxBlockSize(blockSize);
}

void Early::Voice::Clear() {
    delay->Clear();
    for (TapOut& tap : taps) tap.Clear();
}

void Early::Voice::Process(float** outputs, unsigned int stride, float* input, unsigned long numSamples, bool active) {
    if (!active) {
        for (std::size_t i = 0; i < taps.size(); ++i) std::fill_n(outputs[i * stride], numSamples, 0.0f);
        return;
    }
    WriteBlock(input, numSamples);
    ReadBlock(outputs, stride, numSamples);
    MoveOn(numSamples);
}

void Early::Voice::ReadBlock(float** outputs, unsigned int stride, unsigned long numSamples) {
    for (std::size_t i = 0; i < taps.size(); ++i)
        taps[i].Process(outputs[i * stride], static_cast<unsigned int>(numSamples));
}

void Early::Voice::FindBlock(float** outputs, unsigned int stride, unsigned long numSamples) {
    const auto count = static_cast<unsigned int>(numSamples);
    for (std::size_t i = 0; i < taps.size(); ++i) {
        if (float* const tapped = taps[i].FindTapped(count))
            outputs[i * stride] = tapped;
        else
            taps[i].Process(outputs[i * stride], count);
    }
}

void Early::Voice::WriteBlock(float* input, unsigned long numSamples) {
    delay->tapIn(input, static_cast<int>(numSamples), 0);
}

bool Early::Voice::ReadsOnlyThePast(unsigned long numSamples) const noexcept {
    // Above what neighbours and the rounding of a glide add.
    constexpr float margin = 16.0f;  // [samples]
    return std::ranges::all_of(taps, [shortest = static_cast<float>(numSamples) + margin](TapOut const& tap) {
        return tap.GetShortestDelay() >= shortest;
    });
}

Early::Early(unsigned int numDelays, unsigned int newNumInputs, float newSamplerate) {
    samplerate = newSamplerate;
    numInputs = newNumInputs;
    numOutputs = numDelays;
    if (numInputs == 1) {
        leftVoice = std::make_unique<Voice>(numDelays);
    } else if (numInputs == 2) {
        leftVoice = std::make_unique<Voice>(numDelays / 2);
        rightVoice = std::make_unique<Voice>(numDelays / 2);
    }
    SetNumDelays(numDelays);
    Early::SetSamplerate(samplerate);

    Delgen range(numDelays, Delgen::DefaultMinimum, Delgen::DefaultMaximum, Delgen::DefaultDistribution);
    SetDelays(range.SetMinMax(LumeDefaultParameters::DefaultEarlyStart, LumeDefaultParameters::DefaultEarlyEnd,
                              LumeDefaultParameters::DefaultEarlyDistr));
}

void Early::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    if (leftVoice) leftVoice->Process(outputs, numInputs, inputs[0], numSamples, activeInputs[0] != 0);
    if (rightVoice) rightVoice->Process(outputs + 1, numInputs, inputs[1], numSamples, activeInputs[1] != 0);
}

bool Early::ReadsOnlyThePast(unsigned long numSamples) const noexcept {
    return (!leftVoice || leftVoice->ReadsOnlyThePast(numSamples)) &&
           (!rightVoice || rightVoice->ReadsOnlyThePast(numSamples));
}

void Early::FindBlock(float** outputs, unsigned long numSamples) {
    if (leftVoice) leftVoice->FindBlock(outputs, numInputs, numSamples);
    if (rightVoice) rightVoice->FindBlock(outputs + 1, numInputs, numSamples);
}

void Early::WriteBlock(float** inputs, unsigned long numSamples) {
    for (Voice* const voice : {leftVoice.get(), rightVoice.get()}) {
        if (voice == nullptr) continue;
        voice->WriteBlock(*inputs++, numSamples);
        voice->MoveOn(numSamples);
    }
}

void Early::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (Voice* const voice : {leftVoice.get(), rightVoice.get()})
        if (voice != nullptr) voice->SetSamplerate(newSamplerate);
}

void Early::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    for (Voice* const voice : {leftVoice.get(), rightVoice.get()})
        if (voice != nullptr) voice->SetMaxBlockSize(blockSize);
}

void Early::Clear() {
    for (Voice* const voice : {leftVoice.get(), rightVoice.get()})
        if (voice != nullptr) voice->Clear();
}

void Early::SetNumDelays(unsigned int numDelays) {
    const unsigned int oldNumDelays = numOutputs;
    numOutputs = numDelays;
    for (Voice* const voice : {leftVoice.get(), rightVoice.get()}) {
        if (voice == nullptr) continue;
        voice->Resize(numDelays / numInputs);
        voice->SetInterpolationMode(interpolationMode);
        voice->SetInterpolationTime(DefaultDelayInterpolationTime);
    }
    // A lone new delay takes the start of the line.
    const auto last = static_cast<float>(std::max(numDelays, 2u) - 1);
    for (unsigned int k = oldNumDelays; k < numDelays; ++k) SetDelay(k, 20.0f * static_cast<float>(k) / last + 20.0f);
}

TapOut* Early::FindTap(unsigned int index) noexcept {
    return const_cast<TapOut*>(std::as_const(*this).FindTap(index));
}

TapOut const* Early::FindTap(unsigned int index) const noexcept {
    Voice const* const voice = rightVoice && index % 2 == 1 ? rightVoice.get() : leftVoice.get();
    if (voice == nullptr) return nullptr;
    const unsigned int tap = index / numInputs;
    return tap < voice->GetTaps().size() ? &voice->GetTaps()[tap] : nullptr;
}

void Early::Reserve(float ms) {
    for (Voice* const voice : {leftVoice.get(), rightVoice.get()})
        if (voice != nullptr) voice->Reserve(ms);
}

void Early::SetDelay(unsigned int index, float ms) {
    if (TapOut* const tap = FindTap(index)) tap->SetDelay(ms, false);
}

void Early::SetDelays(float const* ms) {
    for (unsigned int i = 0; i < numOutputs; ++i) SetDelay(i, ms[i]);
}

void Early::GetDelays(float* ms) const {
    for (unsigned int i = 0; i < numOutputs; ++i) {
        TapOut const* const tap = FindTap(i);
        ms[i] = tap != nullptr ? tap->GetDelay() : 0.0f;
    }
}

float Early::GetLength() const {
    // Of two voices, an odd delay at the end has no tap.
    const unsigned int numTaps = rightVoice ? numOutputs / 2 * 2 : numOutputs;
    if (numTaps == 0) return 0.0f;
    const auto delayOf = [&](unsigned int i) {
        TapOut const* const tap = FindTap(i);
        return tap != nullptr ? tap->GetDelay() : 0.0f;
    };
    float highest = 0.0f;
    float lowest = delayOf(0);
    for (unsigned int i = 0; i < numTaps; ++i) {
        highest = std::max(highest, delayOf(i));
        lowest = std::min(lowest, delayOf(i));
    }
    return std::abs(highest - lowest);
}

}  // namespace Lume
