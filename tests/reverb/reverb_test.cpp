#include "reverb/reverb.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include "measure/room_measurement.h"
#include "support/allocation_count.h"
#include "support/signals.h"

namespace {

using Lume::Reverb;
using orvandsp::AudioBuffer;
using Channels = std::vector<std::vector<float>>;

constexpr unsigned int block = 64;

/// A late field without air absorption, with the delays that the engine gives it, at rest.
std::unique_ptr<Reverb> Make(unsigned int numChannels, float rate, Lume::ReverbDspParameters const& parameters) {
    std::unique_ptr<Reverb> reverb(Reverb::Create(numChannels, rate));
    reverb->Configure(rate, 4 * block, true);
    reverb->UseAirAbsorption(false);
    reverb->SetDelaysMinSum(52.9f, 860.0f, numChannels < 9 ? 0.5f : 0.3f);
    reverb->SetParameters(parameters);
    return reverb;
}

Lume::ReverbDspParameters Decay(float seconds, float low = 1.0f, float medium = 1.0f, float high = 1.0f) {
    Lume::ReverbDspParameters parameters;
    parameters.decayTime = seconds;
    parameters.relativeDecayLow = low;
    parameters.relativeDecayMedium = medium;
    parameters.relativeDecayHigh = high;
    return parameters;
}

/// Feeds a block of zeros, but for the first sample of channel 0, and calls a function with each block that comes out.
template <typename Function>
void Play(Reverb& reverb, double seconds, float impulse, Function&& function) {
    const unsigned int numChannels = reverb.GetNumDelays();
    AudioBuffer buffer(numChannels, block);
    const auto numBlocks = static_cast<long>(seconds * static_cast<double>(reverb.GetSamplerate()) / block);
    for (long k = 0; k < numBlocks; ++k) {
        buffer.Clear();
        if (k == 0) buffer.GetChannel(0)[0] = impulse;
        reverb.Process(buffer.GetChannels(), buffer.GetChannels(), block, orvandsp::allActiveInputs);
        function(std::as_const(buffer));
    }
}

double EnergyOfRun(Reverb& reverb, double seconds, float impulse) {
    double energy = 0.0;
    Play(reverb, seconds, impulse, [&](AudioBuffer const& out) {
        for (unsigned int c = 0; c < out.GetNumChannels(); ++c) energy += EnergyOf({out.GetChannel(c), block});
    });
    return energy;
}

/// What an impulse in channel 0 becomes, after the glides and ramps of a new object have ended.
Channels ResponseOf(Reverb& reverb, double seconds) {
    EnergyOfRun(reverb, 0.25, 0.0f);
    Channels channels(reverb.GetNumDelays());
    Play(reverb, seconds, 1.0f, [&](AudioBuffer const& out) {
        for (unsigned int c = 0; c < out.GetNumChannels(); ++c)
            channels[c].insert(channels[c].end(), out.GetChannel(c), out.GetChannel(c) + block);
    });
    return channels;
}

/// The input gain for a decay time, in double precision.
double InputGain(Reverb const& reverb, double decayTime) {
    std::vector<float> delays(reverb.GetNumDelays());
    reverb.GetDelays(delays.data());
    double sum = 0.0;
    for (const float ms : delays) sum += std::pow(10.0, -0.006 * static_cast<double>(ms) / decayTime);
    return std::sqrt(static_cast<double>(delays.size()) / sum - 1.0);
}

TEST(Reverb, CreateRefusesWhatItCannotBuild) {
    for (const auto& [channels, rate] : {std::pair{1u, 44100.0f}, {65u, 44100.0f}, {8u, 0.0f}, {8u, std::nanf("")}})
        EXPECT_EQ(std::unique_ptr<Reverb>(Reverb::Create(channels, rate)), nullptr) << channels << " " << rate;
}

TEST(Reverb, DelaysStartAsDocumentedAndAreLimited) {
    const std::unique_ptr<Reverb> reverb(Reverb::Create(8, 44100.0f));
    std::vector<float> delays(8);
    reverb->GetDelays(delays.data());
    const std::vector<float> expected = {52.91f, 69.48f, 76.69f, 88.95f, 107.05f, 118.53f, 131.30f, 147.09f};
    for (std::size_t i = 0; i < 8; ++i) EXPECT_NEAR(delays[i], expected[i], 0.006f);
    EXPECT_NEAR(InputGain(*reverb, 1.995), 0.970, 5e-4);

    // From nine channels on the delays have less room than the sum needs: they end at the shortest one.
    const std::unique_ptr<Reverb> sixteen(Reverb::Create(16, 44100.0f));
    std::vector<float> crowded(16);
    sixteen->GetDelays(crowded.data());
    EXPECT_NEAR(crowded.front(), 43.21f, 0.006f);
    EXPECT_NEAR(crowded.back(), 52.91f, 0.006f);

    reverb->SetDelay(0, 0.5f);
    reverb->SetDelay(1, 2000.0f);
    reverb->GetDelays(delays.data());
    EXPECT_NEAR(delays[0], 1.4512f, 1e-4f);
    EXPECT_NEAR(delays[1], 1500.0f, 1e-3f);
}

// The first arrival of each line, against the closed form: its time, its sum (the gain at 0 Hz) and its alternating sum
// (the gain at half the sample rate). Red if a line takes another's filter, if a band takes another's decay, if an
// input gain isn't undone, or if the loop gains or loses a chunk.
TEST(Reverb, FirstArrivalsHaveTheirTimeAndLevel) {
    constexpr float rate = 44100.0f;
    for (const bool compensate : {true, false}) {
        const auto reverb = Make(8, rate, Decay(1.5f, 0.6f, 1.0f, 0.3f));
        reverb->CompensateInputPower(compensate);
        const Channels channels = ResponseOf(*reverb, 0.25);
        std::vector<float> delays(8);
        reverb->GetDelays(delays.data());
        const double gain = compensate ? 1.0 : InputGain(*reverb, 1.5);
        const double secondArrival = 2.0 * static_cast<double>(delays[0]);
        int compared = 0;
        for (std::size_t c = 0; c < 8; ++c) {
            const auto ms = static_cast<double>(delays[c]);
            const auto arrival = static_cast<std::size_t>(ms * 0.001 * static_cast<double>(rate)) + block;
            for (std::size_t n = 0; n < arrival; ++n) ASSERT_EQ(channels[c][n], 0.0f) << c << " " << n;
            EXPECT_GT(std::abs(channels[c][arrival]) + std::abs(channels[c][arrival + 1]), 0.05f) << c;
            if (ms + 10.0 > secondArrival) continue;
            ++compared;
            double sum = 0.0;
            double alternating = 0.0;
            const auto end = static_cast<std::size_t>(secondArrival * 0.001 * static_cast<double>(rate));
            for (std::size_t n = 0; n < end; ++n) {
                sum += static_cast<double>(channels[c][n]);
                alternating += static_cast<double>(channels[c][n]) * (n % 2 == 0 ? 1.0 : -1.0);
            }
            const auto passGain = [&](double seconds) { return std::pow(10.0, -0.003 * ms / seconds); };
            EXPECT_NEAR(sum, gain * passGain(1.5 * 0.6) / std::sqrt(8.0), 1e-3 * sum) << c;
            EXPECT_NEAR(std::abs(alternating), gain * passGain(1.5 * 0.3) / std::sqrt(8.0), 1e-3 * sum) << c;
        }
        EXPECT_GE(compared, 3);
    }
}

/// In the octaves from a centre to another [Hz].
void ExpectDecay(Reverb& reverb, double seconds, double lowest, double highest) {
    const auto rate = static_cast<double>(reverb.GetSamplerate());
    const Channels channels = ResponseOf(reverb, 1.2 * seconds);
    const std::vector<std::span<float const>> response(channels.begin(), channels.end());
    for (auto const& band : orvanmeasure::Measure(response, rate, orvanmeasure::BandWidth::octave).bands)
        if (band.band.centreHz > 0.9 * lowest && band.band.centreHz < 1.1 * highest) {
            EXPECT_NEAR(band.t30.seconds.value / seconds, 1.0, 0.05)
                << seconds << " s at " << rate << " Hz, band " << band.band.name;
        }
}

/// All bands together, the medium one alone, and the low and the high one, away from the crossovers. With other numbers
/// of channels the decay is less exact: few channels have delays beyond the decay time, many have delays hardly longer
/// than a chunk.
void ExpectAllDecays(float rate, float seconds) {
    const auto wanted = static_cast<double>(seconds);
    for (const unsigned int n : {8u, 12u}) ExpectDecay(*Make(n, rate, Decay(seconds)), wanted, 250.0, 4000.0);
    const auto expect = [&](float low, float medium, float high, float crossoverLow, float crossoverHigh, double share,
                            double lowest, double highest) {
        Lume::ReverbDspParameters parameters = Decay(seconds, low, medium, high);
        parameters.crossoverFrequencyLow = crossoverLow;
        parameters.crossoverFrequencyHigh = crossoverHigh;
        ExpectDecay(*Make(8, rate, parameters), share * wanted, lowest, highest);
    };
    expect(1.0f, 0.6f, 0.3f, 80.0f, 16000.0f, 0.6, 1000.0, 2000.0);
    expect(0.6f, 1.0f, 0.8f, 2000.0f, 16000.0f, 0.6, 250.0, 250.0);
    expect(1.0f, 1.0f, 0.8f, Lume::ReverbDspParameters().crossoverFrequencyLow, 1000.0f, 0.8, 4000.0, 4000.0);
}

// The promise of the whole block. Each loop is a chunk longer than the delay that its filter is made for, which makes
// the decay some 2 % long.
TEST(Reverb, BandsDecayInTheirTime) {
    ExpectAllDecays(44100.0f, 0.5f);
    ExpectAllDecays(96000.0f, 0.5f);
}

TEST(SLOW_Reverb, BandsDecayInTheirTime) {
    for (const float rate : {44100.0f, 48000.0f, 96000.0f})
        for (const float seconds : {0.5f, 1.0f, 2.0f, 4.0f, 8.0f}) ExpectAllDecays(rate, seconds);
}

// Over windows of 4 s: the energy that leaves in less fluctuates with what the lines hold.
TEST(Reverb, InfiniteModeKeepsTheEnergy) {
    const auto reverb = Make(8, 44100.0f, Decay(2.0f));
    reverb->SetInfinite(true);
    EnergyOfRun(*reverb, 0.25, 0.0f);
    EnergyOfRun(*reverb, 1.0, 1.0f);
    const double early = EnergyOfRun(*reverb, 4.0, 0.0f);
    EnergyOfRun(*reverb, 25.0, 0.0f);
    EXPECT_NEAR(10.0 * std::log10(EnergyOfRun(*reverb, 4.0, 0.0f) / early), 0.0, 0.05);

    reverb->UseAirAbsorption(true);  // only the highs go now
    EnergyOfRun(*reverb, 4.0, 0.0f);
    const double dull = EnergyOfRun(*reverb, 4.0, 0.0f);
    EXPECT_LT(dull, 0.8 * early);
    EXPECT_GT(dull, 0.01 * early);
}

// Red if denormals stay in a loop, or if something feeds it.
TEST(Reverb, TailFallsToSilence) {
    const auto reverb = Make(8, 44100.0f, Decay(0.3f));
    reverb->UseAirAbsorption(true);
    EnergyOfRun(*reverb, 1.0, 1.0f);
    EnergyOfRun(*reverb, 2.0, 0.0f);
    Play(*reverb, 0.2, 0.0f, [](AudioBuffer const& out) { EXPECT_LT(out.GetPeakValue(), 1e-10f); });
}

// Red if the gain jumps where it should slide or the other way round: the tail is lost above 10 dB only.
TEST(Reverb, LargeChangesOfTheInputGainEmptyTheNetwork) {
    for (const double stepDb : {9.0, 11.0}) {
        const auto reverb = Make(8, 48000.0f, Decay(2.0f));
        EnergyOfRun(*reverb, 0.25, 1.0f);
        const double wanted = InputGain(*reverb, 2.0) * std::pow(10.0, stepDb / 20.0);
        double shorter = 0.05;
        while (InputGain(*reverb, shorter) > wanted) shorter *= 1.0001;
        reverb->SetDecayTime(static_cast<float>(shorter));
        if (stepDb > 10.0)
            EXPECT_EQ(EnergyOfRun(*reverb, 0.5, 0.0f), 0.0);
        else
            EXPECT_GT(EnergyOfRun(*reverb, 0.5, 0.0f), 1e-6);
    }
}

// Red if a chunk limit other than 64 samples rules, if a chunk reads what the one before hasn't written, or if the
// buffers of a shorter chunk allocate.
TEST(Reverb, ChunksDontDependOnTheBlockAndDontAllocate) {
    for (const bool shortest : {false, true}) {
        const auto whole = Make(5, 44100.0f, Decay(1.0f)), parts = Make(5, 44100.0f, Decay(1.0f));
        for (Reverb* reverb : {whole.get(), parts.get()}) {
            if (shortest) reverb->SetDelay(0, 0.1f);  // 64 samples
            EnergyOfRun(*reverb, 0.25, 0.0f);
        }
        AudioBuffer first(5, 4 * block), second(5, 4 * block);
        const long before = AllocationCount();
        for (int k = 0; k < 50; ++k) {
            first.Fill(k == 0 ? 0.5f : 0.0f);
            second.Fill(k == 0 ? 0.5f : 0.0f);
            whole->Process(first.GetChannels(), first.GetChannels(), 4 * block, orvandsp::allActiveInputs);
            for (unsigned int part = 0; part < 4; ++part) {
                AudioBuffer view(second.GetChannels(), 5, block, part * block);
                parts->Process(view.GetChannels(), view.GetChannels(), block, orvandsp::allActiveInputs);
            }
            ASSERT_TRUE(orvandsp::IsEqual(first, second, 0.0f)) << k;
        }
        whole->Process(first.GetChannels(), first.GetChannels(), 3 * block + 7, orvandsp::allActiveInputs);
        whole->Process(first.GetChannels(), first.GetChannels(), 4 * block, orvandsp::allActiveInputs);
        EXPECT_EQ(AllocationCount(), before);
    }
}

}  // namespace
