#include "decoders/transaural/transaural_decoder_recursive_symmetric_biquads.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>
#include <vector>

#include "decoders/transaural/loop_gain_limit.h"
#include "hrtf/coll_file.h"
#include "hrtf/hrtf.h"
#include "hrtf/hrtf_filtering.h"
#include "hrtf/symmetric_transaural_data_loader.h"

namespace Lume {

namespace {

constexpr unsigned int defaultNumStages = 6;
constexpr float maxDelay = 20.0f;      // [ms], far beyond any head
constexpr float initialDelay = 0.25f;  // [ms], about that of loudspeakers at 30 degrees
constexpr float fullScale = 1.0f;
/// What an equaliser may send around: a cascade whose inverse is unstable must not leave infinities in the loop, which
/// would outlive it.
constexpr float runawayLevel = 100.0f;
constexpr float minDelaySamples = 2.0f;  // as much as the reader between samples looks ahead

/// 0 for what exceeds a limit. Written as "not inside", so that not a number falls silent too.
float Within(float limit, float x) noexcept {
    return !(std::abs(x) <= limit) ? 0.0f : x;
}

void FilterSample(FadedBiquadCascade& filter, float& x) {
    filter.ProcessBlock(&x, &x, 1, false);
}

/// A set of binaural filters, whatever the kind of file.
std::unique_ptr<HrtfData> Load(std::string const& path) {
    if (CheckFileExtension(path, ".bin2trans")) return std::make_unique<SymmetricTransauralDataLoader>(path);
    return std::make_unique<Hrtf>(path);
}

/// The filter of an ear of a point: as many coefficients as asked for, with zeros for what the point doesn't have.
std::vector<float> EarFilter(HrtfPoint const& point, unsigned int ear, std::size_t length) {
    const std::span<float const> stored = EarCoefficients(point, ear);
    std::vector<float> filter(stored.begin(), stored.end());
    filter.resize(length);
    return filter;
}

}  // namespace

TransauralDecoderRecursiveSymmetricBiquads::Loop::Loop()
    : equaliser(defaultNumStages),
      far(defaultNumStages),
      inverseNear(defaultNumStages),
      line(maxDelay, Delay::lagrange3),
      tap(&line) {
    tap.SetInterpolationMode(Delay::lagrange3);
    tap.SetDelay(initialDelay, true);
}

void TransauralDecoderRecursiveSymmetricBiquads::Loop::SetNumStages(unsigned int numStages) {
    for (auto* const filter : {&equaliser, &far, &inverseNear}) filter->SetNumStages(numStages);
}

float TransauralDecoderRecursiveSymmetricBiquads::Loop::Returned() {
    float x;
    tap.Process(&x, 1);
    FilterSample(far, x);
    FilterSample(inverseNear, x);
    return Within(fullScale, x);
}

TransauralDecoderRecursiveSymmetricBiquads::TransauralDecoderRecursiveSymmetricBiquads(unsigned int numberOfInputs,
                                                                                       unsigned int numberOfOutputs)
    : TransauralDecoder(numberOfInputs, numberOfOutputs) {
    crossGain.SetValue(DefaultCrossGain, true);
}

Decoder* TransauralDecoderRecursiveSymmetricBiquads::Create(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    return CreateTransauralDecoder<TransauralDecoderRecursiveSymmetricBiquads>(numberOfInputs, numberOfOutputs);
}

bool TransauralDecoderRecursiveSymmetricBiquads::LoadFromFile(char const* path) {
    std::unique_ptr<HrtfData> loaded = Load(path);
    if (!canUse(loaded->GetHrtfHeaderInfos())) return false;
    hrtf = std::move(loaded);
    const unsigned int numStages = (std::max(hrtf->GetNumCoefficients(), 1u) - 1) / 4;
    ForEachLoop([&](Loop& loop) { loop.SetNumStages(numStages); });
    updateFiltersCoefficients();
    return true;
}

void TransauralDecoderRecursiveSymmetricBiquads::updateFiltersCoefficients() {
    if (!hrtf) return;
    HrtfPoint const& first = hrtf->GetNearestHrtfPoint(leftSpeaker);
    HrtfPoint const& second = hrtf->GetNearestHrtfPoint(rightSpeaker);
    const float minDelay = minDelaySamples * 1000.0f / samplerate;
    const float delay = std::min(std::max(minDelay, std::abs(first.itd - second.itd) * 0.5f), maxDelay);

    const unsigned int length = sum.far.GetNumCoefficients();
    std::vector<float> inverseNear = EarFilter(first, 0, length);
    InvertBiquadsCascades(inverseNear.data(), length);
    std::vector<float> far = EarFilter(first, 1, length);
    std::vector<float> inverseNearInLoop = inverseNear;
    LimitLoopGain(far, inverseNearInLoop);
    ForEachLoop([&](Loop& loop) {
        loop.tap.SetDelay(delay, false);
        loop.equaliser.SetCoefficients(inverseNear.data(), false);
        loop.far.SetCoefficients(far.data(), false);
        loop.inverseNear.SetCoefficients(inverseNearInLoop.data(), false);
    });
}

void TransauralDecoderRecursiveSymmetricBiquads::Process(float** outputs, float** inputs, unsigned long numSamples,
                                                         short const* activeInputs) {
    if (!hrtf || activeInputs[0] == 0 || activeInputs[1] == 0) {
        Mute(outputs, numSamples);
        return;
    }
    for (unsigned long k = 0; k < numSamples; ++k) {
        float s = inputs[1][k] + inputs[0][k];
        float t = inputs[0][k] - inputs[1][k];
        FilterSample(sum.equaliser, s);
        FilterSample(difference.equaliser, t);
        const float g = crossGain.Advance(1);
        s -= sum.Returned() * g;
        t += difference.Returned() * g;
        s = Within(runawayLevel, s);
        t = Within(runawayLevel, t);
        sum.line.tapIn(&s, 1, 0);
        difference.line.tapIn(&t, 1, 0);
        s = Within(fullScale, s);
        t = Within(fullScale, t);
        outputs[0][k] = t + s;
        outputs[1][k] = s - t;
        ForEachLoop([](Loop& loop) { loop.line.AdvanceWritePosition(1); });
    }
}

void TransauralDecoderRecursiveSymmetricBiquads::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    crossGain.SetSamplerate(newSamplerate);
    ForEachLoop([&](Loop& loop) {
        for (auto* const filter : {&loop.equaliser, &loop.far, &loop.inverseNear}) filter->SetSamplerate(newSamplerate);
        loop.line.SetSamplerate(newSamplerate);
        loop.tap.SetSamplerate(newSamplerate);
    });
}

void TransauralDecoderRecursiveSymmetricBiquads::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    // The loops work sample by sample, whatever the block.
    ForEachLoop([](Loop& loop) {
        for (auto* const filter : {&loop.equaliser, &loop.far, &loop.inverseNear}) filter->SetMaxBlockSize(1);
        loop.line.SetMaxBlockSize(1);
    });
}

void TransauralDecoderRecursiveSymmetricBiquads::Clear() {
    ForEachLoop([](Loop& loop) {
        for (auto* const filter : {&loop.equaliser, &loop.far, &loop.inverseNear}) filter->Clear();
        loop.line.Clear();
        loop.tap.Clear();
    });
}

}  // namespace Lume
