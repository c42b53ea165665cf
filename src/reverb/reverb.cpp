#include "reverb/reverb.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "dsp/batch.h"
#include "dsp/denormals.h"
#include "kernels/kernels.h"

namespace Lume {

namespace kernels = orvandsp::kernels;

namespace {

constexpr unsigned int minNumChannels = 2;

/// Longest chunk, and shortest delay [samples]: a chunk is read from the lines as a whole before any of it is written
/// back, so no delay may be shorter.
constexpr unsigned int maxChunkSamples = 64;
constexpr float shortestDelayTimes1000 = 64000.0f;  // 64 samples, as milliseconds times the sample rate
constexpr float longestDelayMs = 1500.0f;
constexpr float longestDelaySeconds = 1.5000001f;  // a float above 1.5, so that the conversion of 1500 ms isn't cut

constexpr float speedOfSound = 340.0f;         // [m/s]
constexpr float inverseInfiniteDecay = 1e-8f;  // [1/s]; less than a millionth of a decibel in a pass
constexpr float maxGainStepDb = 10.0f;         // of the input gain without a restart
constexpr float gainRampMs = 30.0f;
constexpr unsigned int manyChannels = 8;  // above it the delays crowd towards the minimum
constexpr float distributionOfManyChannels = 0.3f;

float Decibels(float gain) {
    return 20.0f * std::log10(gain);
}

}  // namespace

Reverb* Reverb::Create(unsigned int numChannels, float sampleRate) {
    if (numChannels < minNumChannels || numChannels > orvandsp::MaxNumChannels || !(sampleRate > 0.0f)) return nullptr;
    return new Reverb(numChannels, sampleRate);
}

Reverb::Reverb(unsigned int numChannels, float sampleRate)
    : infinite(LumeDefaultParameters::DefaultReverbInfinite),
      airAbsorptionOn(LumeDefaultParameters::DefaultReverbAirAbsorption),
      absorbentFilters(numChannels),
      airFilters(numChannels),
      losses(numChannels),
      delayGenerator(numChannels, Delgen::DefaultMinimum, Delgen::DefaultMaximum, Delgen::DefaultDistribution),
      tapBuffer(numChannels, maxChunkSamples),
      feedbackBuffer(numChannels, maxChunkSamples),
      shuffle(numChannels),
      minimumDelay(DefaultMinDelay),
      compensateInputPower(true) {
    samplerate = sampleRate;
    numInputs = numChannels;
    numOutputs = numChannels;
    ResetToDefaults();
    inputGain.SetSamplerate(sampleRate);
    inputGain.Start(1.0f, 0.0f);
    for (unsigned int i = 0; i < numChannels; ++i) {
        lines.push_back(std::make_unique<Delay>(Delay::DefaultDelayLineLength, Delay::DefaultInterpolationMode));
        taps.push_back(std::make_unique<TapOut>(lines[i].get()));
    }
    const float distribution =
        numChannels > manyChannels ? distributionOfManyChannels : LumeDefaultParameters::DefaultReverbDistr;
    SetDelays(delayGenerator.SetMinSum(DefaultMinDelay, DefaultSumDelay, distribution));
    Configure(samplerate, buffersize, true);
    for (unsigned int i = 0; i < numChannels; ++i) {
        lines[i]->SetInterpolationMode(Delay::allpass);
        taps[i]->SetInterpolationMode(Delay::allpass);
        taps[i]->SetInterpolationTime(Delay::DefaultInterpolationTime);
    }
}

void Reverb::ResetToDefaults() {
    const ReverbDspParameters defaults;
    decayTime = defaults.decayTime;
    relativeDecayLow = defaults.relativeDecayLow;
    relativeDecayMedium = defaults.relativeDecayMedium;
    relativeDecayHigh = defaults.relativeDecayHigh;
    crossoverFrequencyLow = defaults.crossoverFrequencyLow;
    crossoverFrequencyHigh = defaults.crossoverFrequencyHigh;
}

void Reverb::SetParameters(ReverbDspParameters const& parameters) {
    decayTime = parameters.decayTime;
    relativeDecayLow = parameters.relativeDecayLow;
    relativeDecayMedium = parameters.relativeDecayMedium;
    relativeDecayHigh = parameters.relativeDecayHigh;
    crossoverFrequencyLow = parameters.crossoverFrequencyLow;
    crossoverFrequencyHigh = parameters.crossoverFrequencyHigh;
    update();
}

void Reverb::SetDecayTime(float seconds) {
    decayTime = seconds;
    update();
}

void Reverb::SetRelativeDecayLow(float ratio) {
    relativeDecayLow = ratio;
    update();
}

void Reverb::SetRelativeDecayMedium(float ratio) {
    relativeDecayMedium = ratio;
    update();
}

void Reverb::SetRelativeDecayHigh(float ratio) {
    relativeDecayHigh = ratio;
    update();
}

void Reverb::SetCrossoverFrequencyLow(float hertz) {
    crossoverFrequencyLow = hertz;
    update();
}

void Reverb::SetCrossoverFrequencyHigh(float hertz) {
    crossoverFrequencyHigh = hertz;
    update();
}

void Reverb::SetInfinite(bool newInfinite) {
    infinite = newInfinite;
    update();
}

void Reverb::UseAirAbsorption(bool use) {
    airAbsorptionOn = use;
}

void Reverb::CompensateInputPower(bool compensate) {
    compensateInputPower = compensate;
}

void Reverb::SetAirAbsorptionRolloffFrequency(float hertz) {
    losses.SetRolloffFrequency(airFilters, hertz);
}

float Reverb::LowestDelay() const noexcept {
    return shortestDelayTimes1000 / samplerate;
}

void Reverb::LowerMinimumDelay(float ms) noexcept {
    if (ms < minimumDelay) minimumDelay = ms;
}

void Reverb::PlaceDelay(unsigned int channel, float ms) {
    const float limited = std::max(LowestDelay(), std::min(ms, longestDelayMs));
    LowerMinimumDelay(limited);
    lines[channel]->SetDelay(limited, true);
    taps[channel]->SetDelay(limited, true);
}

void Reverb::SetDelays(float const* ms) {
    for (unsigned int i = 0; i < GetNumDelays(); ++i) PlaceDelay(i, ms[i]);
    update();
}

void Reverb::SetDelay(unsigned int channel, float ms) {
    PlaceDelay(channel, ms);
    update();
}

void Reverb::SetDelaysMinSum(float minimum, float sum, float distribution) {
    minimum = std::max(LowestDelay(), minimum);
    LowerMinimumDelay(minimum);
    SetDelays(delayGenerator.SetMinSum(minimum, sum, distribution));
}

void Reverb::Reserve(float longestMinimum, float largestSum, float distribution) {
    Delgen generator = delayGenerator;
    generator.SetMinSum(LowestDelay(), largestSum, distribution);
    // Where the sum is too small for the minimum, the generator goes from somewhere below the minimum up to it; and it
    // widens what is too narrow.
    constexpr float widening = 5.0f;  // [ms]
    const float longest = std::max(generator.GetMaximum(), longestMinimum) + widening;
    for (auto const& line : lines) line->Reserve(std::min(longest, longestDelayMs));
}

float Reverb::GetLongestDelay() const noexcept {
    float longest = 0.0f;
    for (auto const& line : lines) longest = std::max(longest, line->GetDelay());
    return longest;
}

void Reverb::GetDelays(float* ms) const {
    for (unsigned int i = 0; i < GetNumDelays(); ++i) ms[i] = lines[i]->GetDelay();
}

void Reverb::update() {
    const float invDecay = infinite ? inverseInfiniteDecay : 1.0f / decayTime;
    const float invLow = 1.0f / relativeDecayLow;
    const float invMed = 1.0f / relativeDecayMedium;
    const float invHigh = 1.0f / relativeDecayHigh;
    // The share of energy that survives a millisecond. From the decay time also in infinite mode, so that the level of
    // what comes in stays as it was.
    const float base = std::pow(10.0f, -0.006f / decayTime);

    float sumOfShares = 0.0f;
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        const float seconds = std::min(std::max(taps[i]->GetDelay() * 0.001f, 0.0f), longestDelaySeconds);
        const float passDb = -60.0f * invDecay * seconds;
        losses.Want(i,
                    {.gain = 0.0f,
                     .gainLow = passDb * invLow,
                     .gainMed = passDb * invMed,
                     .gainHigh = passDb * invHigh,
                     .freqLow = crossoverFrequencyLow,
                     .freqHigh = crossoverFrequencyHigh},
                    speedOfSound * seconds);
        sumOfShares += std::pow(base, seconds * 1000.0f);
    }
    losses.Design(absorbentFilters, airFilters);
    const float target = std::sqrt(static_cast<float>(GetNumDelays()) / sumOfShares - 1.0f);

    if (std::abs(Decibels(PresentInputGain()) - Decibels(target)) > maxGainStepDb) {
        Clear();
        if (silencesAirOnRestart) ClearAirFilters();
        inputGain.Start(target, 0.0f);
    } else {
        inputGain.Start(target, gainRampMs);
    }
}

float Reverb::PresentInputGain() const noexcept {
    if (inputGain.total == 0) return inputGain.current;
    const auto remaining = static_cast<float>(std::max(inputGain.remaining, 0));
    return (1.0f - remaining / static_cast<float>(inputGain.total)) * (inputGain.target - inputGain.start) +
           inputGain.start;
}

void Reverb::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        lines[i]->SetSamplerate(newSamplerate);
        taps[i]->SetSamplerate(newSamplerate);
        absorbentFilters[i].SetSamplerate(newSamplerate);
        airFilters[i].SetSamplerate(newSamplerate);
    }
    losses.Forget();
    inputGain.SetSamplerate(newSamplerate);
    Clear();
    inputGain.Start(1.0f, 0.0f);
    update();
}

void Reverb::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        lines[i]->SetMaxBlockSize(blockSize);
        taps[i]->SetMaxBlockSize(blockSize);
    }
    tapBuffer.Resize(GetNumDelays(), blockSize);
    feedbackBuffer.Resize(GetNumDelays(), blockSize);
    shuffle.SetMaxBlockSize(blockSize);
}

void Reverb::Clear() {
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        lines[i]->Clear();
        taps[i]->Clear();
        absorbentFilters[i].Clear();
    }
    tapBuffer.Clear();
    feedbackBuffer.Clear();
}

void Reverb::ClearAirFilters() {
    for (AirAbsorption& filter : airFilters) filter.Clear();
}

template <typename Run>
void Reverb::ForEachChunk(unsigned long numSamples, Run run) {
    // At least one sample, so that a rate of a few hertz, where the shortest delay is no sample long, can't stop the
    // loop.
    const auto maxChunk =
        std::clamp(static_cast<unsigned int>(samplerate * minimumDelay * 0.001f), 1u, maxChunkSamples);
    for (unsigned long done = 0; done < numSamples;) {
        const auto chunk = static_cast<unsigned int>(std::min<unsigned long>(numSamples - done, maxChunk));
        if (chunk != tapBuffer.GetNumSamples()) {
            tapBuffer.Resize(GetNumDelays(), chunk);
            feedbackBuffer.Resize(GetNumDelays(), chunk);
        }
        // One gain for the chunk, that from before its step.
        const float gain = inputGain.Advance(chunk);
        run(done, chunk, gain, compensateInputPower ? 1.0f / gain : 1.0f);
        done += chunk;
    }
}

void Reverb::Process(float** outputs, float** inputs, unsigned long numSamples, short const*) {
    ForEachChunk(numSamples, [&](unsigned long first, unsigned int chunk, float gain, float compensation) {
        ReadTaps(chunk);
        kernels::Get().feedback(tapBuffer.GetChannels(), outputs, inputs, first, GetNumDelays(), gain, compensation,
                                chunk);
        WriteLines(chunk);
    });
}

bool Reverb::StandsStill() const noexcept {
    return std::ranges::all_of(taps, [](auto const& tap) { return tap->StandsStill(); });
}

void Reverb::ProcessMixed(float** mixed, Mix const& mix, unsigned long numSamples) {
    kernels::AllpassHead heads[orvandsp::MaxNumChannels];
    kernels::Shelf absorbents[orvandsp::MaxNumChannels], airs[orvandsp::MaxNumChannels];
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        absorbents[i] = absorbentFilters[i].GetKernelShelf();
        airs[i] = airFilters[i].GetShelf().GetKernelShelf();
    }
    orvandsp::FlushDenormals();
    ForEachChunk(numSamples, [&](unsigned long first, unsigned int chunk, float gain, float compensation) {
        for (unsigned int i = 0; i < GetNumDelays(); ++i) heads[i] = *taps[i]->FindAllpassHead(chunk);
        kernels::Get().lateMix({.clusterHeads = mix.clusterHeads,
                                .clusterShelves = mix.clusterShelves,
                                .lateHeads = heads,
                                .absorbents = absorbents,
                                .airs = airAbsorptionOn ? airs : nullptr,
                                .mixed = mixed,
                                .loops = tapBuffer.GetChannels(),
                                .first = first,
                                .clusterGain = mix.clusterGain,
                                .inGain = gain,
                                .outGain = compensation,
                                .lateGain = mix.lateGain},
                               GetNumDelays(), chunk);
        for (unsigned int i = 0; i < GetNumDelays(); ++i) mix.clusterHeads[i].first += static_cast<int>(chunk);
        WriteLines(chunk);
    });
}

void Reverb::WriteLines(unsigned int chunk) {
    float* mixed[orvandsp::MaxNumChannels];
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        // Before the line is written: what goes in now is read a chunk and a delay later, and the loop of each line is
        // a chunk longer than its delay. The filters are made for the delay alone (kept: quirks.md 1).
        lines[i]->AdvanceWritePosition(static_cast<int>(chunk));
        float* const cells = lines[i]->FindCells(static_cast<int>(chunk), 0);
        mixed[i] = cells != nullptr ? cells : feedbackBuffer.GetChannel(i);
    }
    shuffle.Process(mixed, tapBuffer.GetChannels(), chunk, orvandsp::allActiveInputs);
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        lines[i]->tapIn(mixed[i], static_cast<int>(chunk), 0);
        lines[i]->ExpectBlock(static_cast<int>(chunk), static_cast<int>(chunk));
    }
}

void Reverb::ReadTaps(unsigned int chunk) {
    orvandsp::FlushDenormals();
    const auto read = [&](std::span<kernels::LossyHeadJob const> heads) {
        kernels::Get().lossyHeads(heads.data(), heads.size(), chunk, airAbsorptionOn);
    };
    orvandsp::Batch<kernels::LossyHeadJob, decltype(read)> heads(read);
    for (unsigned int i = 0; i < GetNumDelays(); ++i) {
        float* const tapped = tapBuffer.GetChannel(i);
        if (const auto head = taps[i]->FindAllpassHead(chunk))
            heads.Add({*head, absorbentFilters[i].GetKernelShelf(), airFilters[i].GetShelf().GetKernelShelf(), tapped});
        else
            ReadTapAlone(i, tapped, chunk);
    }
    heads.Finish();
}

void Reverb::ReadTapAlone(unsigned int channel, float* tapped, unsigned int chunk) {
    taps[channel]->Process(tapped, chunk);
    absorbentFilters[channel].Process(tapped, tapped, chunk);
    if (airAbsorptionOn) airFilters[channel].Process(tapped, tapped, chunk);
}

}  // namespace Lume
