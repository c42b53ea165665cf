#include "reverb/line_losses.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <ostream>
#include <random>
#include <span>
#include <vector>

#include "reverb/reverb.h"
#include "support/signals.h"

namespace {

using Lume::AirAbsorption;
using Lume::Reverb;
using Lume::UnitaryHLShelf;

/// A static setting of the late field, anywhere in the ranges of its controls, half of the values at their ends.
struct Setting {
    explicit Setting(std::mt19937& generator) {
        const auto draw = [&](float low, float high) {
            const float share = static_cast<float>(generator()) * 0x1p-32f;
            if (share < 0.25f) return low;
            if (share < 0.5f) return high;
            return low * std::pow(high / low, 2.0f * share - 1.0f);
        };
        constexpr std::array rates = {8000.0f,  11025.0f, 16000.0f, 22050.0f, 32000.0f, 40001.0f,
                                      44100.0f, 48000.0f, 88200.0f, 96000.0f, 192000.0f};
        rate = rates[generator() % rates.size()];
        numChannels = 2 + static_cast<unsigned int>(generator() % 15);
        field.decayTime = draw(0.1f, 10.0f);
        field.relativeDecayLow = draw(0.1f, 10.0f);
        field.relativeDecayMedium = draw(0.1f, 10.0f);
        field.relativeDecayHigh = draw(0.1f, 1.0f);
        field.crossoverFrequencyLow = draw(20.0f, 20000.0f);
        field.crossoverFrequencyHigh = draw(20.0f, 20000.0f);
        airRolloff = draw(20.0f, 20000.0f);
        start = draw(1.0f, 500.0f);
        density = draw(200.0f, 4000.0f);
        useAir = generator() % 2 == 0;
        infinite = generator() % 8 == 0;
    }
    std::unique_ptr<Reverb> MakeReverb() const {
        std::unique_ptr<Reverb> reverb(Reverb::Create(numChannels, rate));
        reverb->SetDelaysMinSum(start, density, numChannels < 9 ? 0.5f : 0.3f);
        reverb->SetParameters(field);
        reverb->SetAirAbsorptionRolloffFrequency(airRolloff);
        reverb->UseAirAbsorption(useAir);
        reverb->SetInfinite(infinite);
        return reverb;
    }
    float rate;
    unsigned int numChannels;
    Lume::ReverbDspParameters field;
    float airRolloff, start, density;
    bool useAir, infinite;
};

std::ostream& operator<<(std::ostream& out, Setting const& s) {
    return out << s.rate << " Hz, " << s.numChannels << " channels, decay " << s.field.decayTime << " s x "
               << s.field.relativeDecayLow << " " << s.field.relativeDecayMedium << " " << s.field.relativeDecayHigh
               << ", crossovers " << s.field.crossoverFrequencyLow << " " << s.field.crossoverFrequencyHigh
               << ", rolloff " << s.airRolloff << ", start " << s.start << ", density " << s.density << ", air "
               << s.useAir << ", infinite " << s.infinite;
}

// Mixing keeps energy, so that a late field whose lines never gain decays. Red if a filter is judged by what it was
// meant to be, if what is tried last may gain, if a filter that is well is changed, or if the sum of both is forgotten.
TEST(LineLosses, NoPassEverGains) {
    std::mt19937 generator(1);
    int changed = 0;
    for (int i = 0; i < 10000; ++i) {
        const Setting s(generator);
        SCOPED_TRACE(testing::Message() << i << ": " << s);
        UnitaryHLShelf shelf, plain;
        AirAbsorption air;
        Lume::LineLosses losses(1);
        shelf.SetSamplerate(s.rate);
        plain.SetSamplerate(s.rate);
        air.SetSamplerate(s.rate);
        for (const float ms : {64000.0f / s.rate, std::min(s.density / static_cast<float>(s.numChannels), 1500.0f)}) {
            const float passDb = -0.06f * ms * (s.infinite ? 1e-8f : 1.0f / s.field.decayTime);
            const Lume::HLShelfParameters wanted = {.gainLow = passDb / s.field.relativeDecayLow,
                                                    .gainMed = passDb / s.field.relativeDecayMedium,
                                                    .gainHigh = passDb / s.field.relativeDecayHigh,
                                                    .freqLow = s.field.crossoverFrequencyLow,
                                                    .freqHigh = s.field.crossoverFrequencyHigh};
            air.SetRolloffFrequency(s.airRolloff);
            losses.Want(0, wanted, 0.34f * ms);
            losses.Design({&shelf, 1}, {&air, 1});
            const double gain = losses.GetAbsorbentGain(0);
            ASSERT_LE(gain, 1.0);
            ASSERT_LE(shelf.LargestMagnitude(), gain);
            ASSERT_LE(air.GetShelf().LargestMagnitude() * static_cast<double>(air.GetShelf().GetOverallGain()) * gain,
                      1.0);
            plain.SetAll(0.0f, wanted.gainLow, wanted.gainMed, wanted.gainHigh, wanted.freqLow, wanted.freqHigh);
            if (plain.LargestMagnitude() + 1.5e-8 * plain.LargestNoiseGain() <= 1.0) {
                std::vector<float> a = MakeImpulse(64), b = a;
                shelf.Process(a.data(), a.data(), a.size());
                plain.Process(b.data(), b.data(), b.size());
                ASSERT_EQ(a, b);
            } else {
                ++changed;
            }
            shelf.Clear();
            plain.Clear();
        }
    }
    // So many need it when their values are drawn like that: without a case nothing is tested.
    EXPECT_GT(changed, 2000);
}

/// Energy of each of some stretches of a late field's tail behind half a second of noise.
std::vector<double> TailOf(Setting const& s, unsigned int numStretches, double stretchSeconds) {
    constexpr unsigned int block = 64;
    const auto reverb = s.MakeReverb();
    orvandsp::AudioBuffer buffer(s.numChannels, block);
    const std::vector<float> noise = MakeNoise(1, 8192);
    std::vector<double> energies;
    const auto run = [&](double seconds, bool sounds) {
        double energy = 0.0;
        const auto numBlocks = static_cast<std::size_t>(seconds * static_cast<double>(s.rate) / block);
        for (std::size_t k = 0; k < numBlocks; ++k) {
            buffer.Clear();
            for (unsigned int c = 0; sounds && c < s.numChannels; ++c)
                std::copy_n(noise.begin() + static_cast<long>((k * 64 + c * 611) % 8000), block, buffer.GetChannel(c));
            reverb->Process(buffer.GetChannels(), buffer.GetChannels(), block, orvandsp::allActiveInputs);
            for (unsigned int c = 0; c < s.numChannels; ++c)
                energy += EnergyOf(std::span<float const>(buffer.GetChannel(c), block));
        }
        return energy;
    };
    run(0.5, true);
    for (unsigned int i = 0; i < numStretches; ++i) energies.push_back(run(stretchSeconds, false));
    return energies;
}

void ExpectDecays(std::uint32_t seed, int number, double stretchSeconds) {
    std::mt19937 generator(seed);
    for (int i = 0; i < number; ++i) {
        const Setting s(generator);
        const std::vector<double> tail = TailOf(s, 3, stretchSeconds);
        // A tail that holds for minutes leaves now this, now that much of what the lines hold.
        ASSERT_LE(tail[2], 2.0 * std::max(tail[0], tail[1]) + 1e-12) << seed << ", " << i << ": " << s;
        ASSERT_TRUE(std::isfinite(tail[1])) << seed << ", " << i << ": " << s;
    }
}

// The same, heard. Red if the late field's filters aren't those that were judged, in any mode.
TEST(LineLosses, NoTailGrows) {
    ExpectDecays(2, 60, 0.6);
}

TEST(LineLosses, SLOW_NoTailGrows) {
    ExpectDecays(3, 10000, 1.5);
}

}  // namespace
