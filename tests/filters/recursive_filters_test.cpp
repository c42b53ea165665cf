#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "filters/biquad_cascade.h"
#include "filters/faded_biquad_cascade.h"
#include "filters/faded_iir_filter.h"
#include "filters/iir_filter.h"
#include "filters/low_pass.h"
#include "filters/multi_faded_low_pass.h"
#include "filters/multi_low_pass.h"
#include "support/allocation_count.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

using Lume::BiquadCascade;
using Lume::IIRFilter;
using Lume::LowPass;

/// Numerator and denominator of a filter as polynomials in double.
struct Polynomials {
    std::vector<double> b{1.0}, a{1.0};

    static std::vector<double> Product(std::vector<double> const& p, std::vector<double> const& q) {
        std::vector<double> r(p.size() + q.size() - 1, 0.0);
        for (std::size_t i = 0; i < p.size(); ++i)
            for (std::size_t j = 0; j < q.size(); ++j) r[i + j] += p[i] * q[j];
        return r;
    }

    /// The transposed form, in double: another order of operations than the code's.
    std::vector<double> Run(std::vector<float> const& x) const {
        std::vector<double> memory(b.size() + 1, 0.0), y;
        for (const float sample : x) {
            const double in = static_cast<double>(sample);
            const double out = b[0] * in + memory[0];
            for (std::size_t k = 1; k < b.size(); ++k) memory[k - 1] = b[k] * in - a[k] * out + memory[k];
            y.push_back(out);
        }
        return y;
    }
};

/// A cascade of resonances at different places; each section's numerator differs from its denominator.
std::vector<float> MakeSet(unsigned int numStages) {
    std::vector<float> set{0.5f};
    for (unsigned int i = 0; i < numStages; ++i) {
        const float angle = 0.3f + 0.25f * static_cast<float>(i), radius = 0.85f - 0.02f * static_cast<float>(i);
        set.insert(set.end(), {-1.2f * radius * std::cos(angle + 0.2f), 0.36f * radius,
                               -2.0f * radius * std::cos(angle), radius * radius});
    }
    return set;
}

Polynomials Expand(std::vector<float> const& set) {
    Polynomials p;
    p.b[0] = static_cast<double>(set[0]);
    for (std::size_t i = 1; i + 3 < set.size(); i += 4) {
        const auto at = [&](std::size_t k) { return static_cast<double>(set[i + k]); };
        p.b = Polynomials::Product(p.b, {1.0, at(0), at(1)});
        p.a = Polynomials::Product(p.a, {1.0, at(2), at(3)});
    }
    return p;
}

std::vector<float> Filtered(orvandsp::Filter& filter, std::vector<float> signal) {
    const std::size_t half = signal.size() / 2;
    filter.Process(signal.data(), signal.data(), half);
    filter.Process(signal.data() + half, signal.data() + half, signal.size() - half);
    return signal;
}

void ExpectNear(std::vector<float> const& signal, std::vector<double> const& expected, double tolerance) {
    for (std::size_t n = 0; n < signal.size(); ++n)
        ASSERT_NEAR(static_cast<double>(signal[n]), expected[n], tolerance) << "sample " << n;
}

// Independent computation: the expanded polynomials in double. 17 stages take three passes.
TEST(BiquadCascade, AgreesWithItsExpandedPolynomials) {
    const std::vector<float> noise = MakeNoise(1, 500);
    for (const unsigned int numStages : {0u, 1u, 2u, 6u, 8u, 9u, 17u}) {
        std::vector<float> set = MakeSet(numStages);
        BiquadCascade cascade(numStages);
        ASSERT_EQ(cascade.GetNumCoefficients(), set.size());
        cascade.SetCoefficients(set.data());
        const std::vector<double> expected = Expand(set).Run(noise);
        double peak = 0.0;
        for (const double y : expected) peak = std::max(peak, std::abs(y));
        ExpectNear(Filtered(cascade, noise), expected, 2e-5 * peak);  // some hundred single-precision roundings
        EXPECT_TRUE(cascade.IsStable());
    }
}

// Red if a sign is "repaired": the denominator comes back with the opposite one.
TEST(BiquadCascade, CoefficientsComeBackWithTheDenominatorNegated) {
    float set[] = {2.0f, 0.1f, 0.2f, 0.3f, 0.4f};
    BiquadCascade cascade;
    cascade.SetOrder(3);
    EXPECT_EQ(cascade.GetOrder(), 2u);
    cascade.SetCoefficients(set);
    std::vector<float> out(cascade.GetNumCoefficients());
    cascade.GetCoefficients(out);
    EXPECT_EQ(out, (std::vector<float>{2.0f, 0.1f, 0.2f, -0.3f, -0.4f}));
    EXPECT_TRUE(cascade.IsStable());
    set[2] = 1.1f;
    set[4] = 0.99f;
    cascade.SetCoefficients(set);
    EXPECT_TRUE(cascade.IsStable());
    EXPECT_FALSE(cascade.IsMinimumPhase());
    set[4] = -1.1f;
    cascade.SetCoefficients(set);
    EXPECT_FALSE(cascade.IsStable());
}

// Filter and inverse in a row are the identity.
TEST(BiquadCascade, InvertedCascadeUndoesTheFilter) {
    std::vector<float> set = MakeSet(6), inverse = set;
    Lume::InvertBiquadsCascades(inverse.data(), static_cast<unsigned int>(inverse.size()));
    BiquadCascade filter(6), undo(6);
    filter.SetCoefficients(set.data());
    undo.SetCoefficients(inverse.data());
    const std::vector<float> noise = MakeNoise(2, 500);
    BiquadCascade untouched(6);
    EXPECT_EQ(Filtered(untouched, noise), noise);
    ExpectNear(Filtered(undo, Filtered(filter, noise)), {noise.begin(), noise.end()}, 1e-4);
    Lume::InvertBiquadsCascades(inverse.data(), static_cast<unsigned int>(inverse.size()));
    EXPECT_EQ(inverse, set);
}

TEST(IIRFilter, AgreesWithATransposedFormInDouble) {
    const std::vector<float> noise = MakeNoise(3, 500);
    for (const unsigned int numStages : {0u, 1u, 3u}) {
        const Polynomials p = Expand(MakeSet(numStages));
        const unsigned int order = 2 * numStages;
        std::vector<float> set(p.b.begin(), p.b.end());
        set.insert(set.end(), p.a.begin(), p.a.end());
        IIRFilter filter(order);
        EXPECT_EQ(Filtered(filter, noise), std::vector<float>(noise.size(), 0.0f));
        filter.SetCoefficients(set.data());
        filter.Clear();
        // High orders in direct form magnify rounding; worst measured 2.2e-4, at peaks of about 5.
        ExpectNear(Filtered(filter, noise), p.Run(noise), 1e-3);
        EXPECT_TRUE(filter.IsStable());
        EXPECT_EQ(filter.GetNumCoefficients(), set.size() + 1);

        IIRFilter other(order);
        other.SetNumerator(std::vector<float>(set.begin(), set.begin() + order + 1));
        other.SetDenominator(std::vector<float>(set.begin() + order + 1, set.end()));
        filter.Clear();
        EXPECT_EQ(Filtered(other, noise), Filtered(filter, noise));
    }
}

// Physics: unity at 0 Hz, nothing at half the rate, and about -3 dB at the cutoff for the flattest damping (the 1.002
// of the design damps low cutoffs a little more).
TEST(LowPass, PassesTheLowsAndKeepsItsCutoff) {
    for (const float rate : {44100.0f, 96000.0f})
        for (const float cutoff : {1000.0f, 3000.0f, 7000.0f}) {
            LowPass filter(cutoff, LowPass::DefaultDamping);
            filter.SetSamplerate(rate);
            const std::vector<float> h = ImpulseResponse(filter, 8192);
            EXPECT_NEAR(GainDbAt(h, 0.0), 0.0, 1e-3);
            EXPECT_NEAR(GainDbAt(h, static_cast<double>(cutoff / rate)), -3.01, 0.5) << cutoff << " at " << rate;
            EXPECT_LT(GainDbAt(h, 0.5), -90.0);
            EXPECT_TRUE(filter.IsStable());
        }
}

TEST(LowPass, LimitsOfTheDesign) {
    LowPass undamped(1000.0f, 0.0f);
    EXPECT_TRUE(undamped.IsStable());
    EXPECT_TRUE(std::isfinite(ImpulseResponse(undamped, 44100).back()));
    undamped.SetDamping(3.0f);
    EXPECT_EQ(undamped.GetDamping(), 2.0f);

    // Beyond half the rate it designs as at half the rate: all four taps cancel, and the gain is close to 1.
    std::vector<float> beyond(5), at(5);
    LowPass(40000.0f, 1.0f).GetCoefficients(beyond);
    LowPass(22051.0f, 1.0f).GetCoefficients(at);
    EXPECT_EQ(beyond, at);
    EXPECT_NEAR(beyond[0], 1.0f / 1.002f, 1e-6f);
}

// Red if the new filter takes over memory that it should not have: a fade between equal recursive filters dips by what
// the new one doesn't know yet.
TEST(FadedRecursiveFilters, StartFadesFromSilence) {
    std::vector<float> set{1.0f, 0.0f, 0.0f, -1.999f, 0.9990005f};
    Lume::FadedBiquadCascade cascade(1);
    std::vector<float> ones(4096, 1.0f), out(4096);
    for (int fade = 0; fade < 3; ++fade) {
        const float before = fade == 0 ? 1e6f : out.back();
        cascade.SetCoefficients(set.data(), false);
        cascade.ProcessBlock(out.data(), ones.data(), 4096, false);
        EXPECT_LT(out[220], 0.5f * before) << fade;
        EXPECT_GT(out.back(), 1e5f);
    }

    Lume::FadedIIRFilter gain(0);
    float taps[] = {3.0f, 1.0f};
    gain.SetCoefficients(taps, false);
    gain.ProcessBlock(out.data(), ones.data(), 4096, false);
    const long allocations = AllocationCount();
    gain.ProcessBlock(out.data(), ones.data(), 4096, false);
    EXPECT_EQ(AllocationCount(), allocations);
    EXPECT_EQ(out.back(), 3.0f);
}

// Red if a bank forgets its cutoff at a new rate, if a channel misses a change, or if an inactive one isn't silent.
/// @param numChannels  the bank has before it is told anything, of three in the end
template <typename Bank>
void ExpectBankTakesUpEveryChange(unsigned int numChannels) {
    Bank bank(numChannels);
    bank.SetCutOffFrequency(500.0f);
    bank.SetDamping(0.7f);
    bank.SetSamplerate(96000.0f);
    bank.SetNumChannels(3);
    std::vector<std::vector<float>> channels(3, std::vector<float>(16384, 0.0f));
    float* pointers[] = {channels[0].data(), channels[1].data(), channels[2].data()};
    const short active[] = {1, 1, 0};
    bank.Process(pointers, pointers, 16384, active);  // the fade goes by
    for (auto& channel : channels) channel[0] = 1.0f;
    bank.Process(pointers, pointers, 16384, active);

    LowPass reference(500.0f, 0.7f);
    reference.SetSamplerate(96000.0f);
    const std::vector<float> expected = ImpulseResponse(reference, 16384);
    EXPECT_EQ(channels[0], expected);
    EXPECT_EQ(channels[1], expected);
    EXPECT_EQ(channels[2], std::vector<float>(16384, 0.0f));
}

TEST(LowPassBanks, EveryChannelTakesUpCutoffDampingAndRate) {
    ExpectBankTakesUpEveryChange<Lume::MultiFadedLowPass>(1);
    ExpectBankTakesUpEveryChange<Lume::MultiLowPass>(3);  // new channels of this one start with the defaults
}

}  // namespace
