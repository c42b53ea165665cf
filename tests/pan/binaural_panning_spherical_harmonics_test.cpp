#include "pan/binaural/binaural_panning_spherical_harmonics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

#include "dsp/orvan_dsp_exception.h"
#include "pan/panning_support.h"

namespace {

using Lume::BinauralPanningSphericalHarmonics;
using orvandsp::allActiveInputs;

constexpr unsigned int length = 16;

/// A set of the first order in which the left ear's impulse response is 1 + x at sample 4 and 0.5 (1 + y) at sample 5,
/// and the right ear's 1 - x at sample 4, with x and y the direction's.
class Figures : public Lume::SphericalHarmonicManager {
public:
    explicit Figures(Lume::SphericalHarmonicsNormalization normalization = Lume::SchmidtSeminormalized3D)
        : SphericalHarmonicManager("") {
        info.normalization = normalization;
        info.maxOrder = 1;
        info.numFrequencyBins = length;
        left = orvandsp::MatrixComplex(4, length, 0.0f);
        right = orvandsp::MatrixComplex(4, length, 0.0f);
        for (unsigned int k = 0; k < length; ++k) {
            const auto delayed = [k](int samples) {
                const double phase = -2.0 * std::numbers::pi * k * samples / length;
                return std::complex(static_cast<float>(std::cos(phase)), static_cast<float>(std::sin(phase)));
            };
            // x = (Y(1, 1) - Y(1, -1)) / 2 and y = (Y(1, 1) + Y(1, -1)) / 2j, as Y(1, 1) = x + j y = -conj Y(1, -1).
            left[0][k] = delayed(4) + 0.5f * delayed(5);
            left[1][k] = -0.5f * delayed(4) + std::complex(0.0f, -0.25f) * delayed(5);
            left[3][k] = 0.5f * delayed(4) + std::complex(0.0f, -0.25f) * delayed(5);
            right[0][k] = delayed(4);
            right[1][k] = 0.5f * delayed(4);
            right[3][k] = -0.5f * delayed(4);
        }
    }
    Figures Wrong(Lume::HrtfType type, unsigned int bins) const {
        Figures wrong = *this;
        wrong.info.hrtfType = type;
        wrong.info.numFrequencyBins = bins;
        return wrong;
    }
};

class Panner : public BinauralPanningSphericalHarmonics {
public:
    explicit Panner(unsigned int inputs) : BinauralPanningSphericalHarmonics(inputs, 2) {}
    bool Load(Figures const& set) { return Take(std::make_unique<Figures>(set)); }
};

/// Responses to an impulse on one input, once the filters are there.
Channels Response(Panner& panner, unsigned int input, bool adding, float before) {
    Channels in(2, 512, 0.0f), out(2, 512, 0.0f);
    for (int i = 0; i < 4; ++i) panner.Process(out.pointers.data(), in.pointers.data(), 512, allActiveInputs);
    in.data[input][0] = 1.0f;
    out = Channels(2, 512, before);
    if (adding)
        panner.ProcessAdding(out.pointers.data(), in.pointers.data(), 512, allActiveInputs);
    else
        panner.Process(out.pointers.data(), in.pointers.data(), 512, allActiveInputs);
    return out;
}

// Red if harmonics, ears or the transform are mixed up. The filters are in direct form, whose first two taps fall on
// one sample: sample 4 of the set is heard at 3.
TEST(BinauralPanningSphericalHarmonics, RebuildsTheFiltersOfADirection) {
    Panner panner(1);
    panner.SetSourcePosition(0, At(90.0), false);
    EXPECT_EQ(Response(panner, 0, false, 1.0f).data, Channels(2, 512, 0.0f).data);  // no data yet
    ASSERT_TRUE(panner.Load(Figures()));
    for (const double azimuth : {0.0, 60.0, -130.0}) {
        const Lume::CartesianVector position = At(azimuth, 20.0);
        panner.SetSourcePosition(0, position, false);
        const Channels out = Response(panner, 0, false, 1.0f);
        EXPECT_NEAR(out.data[0][3], 0.70710678f * (1.0f + position.x), 1e-5f);
        EXPECT_NEAR(out.data[0][4], 0.35355339f * (1.0f + position.y), 1e-5f);
        EXPECT_NEAR(out.data[1][3], 0.70710678f * (1.0f - position.x), 1e-5f);
        EXPECT_NEAR(out.data[1][9], 0.0f, 1e-5f);
    }
}

// Red if somebody tidies up: in the adding form the factor takes hold of all that the output has, after each source.
TEST(BinauralPanningSphericalHarmonics, EarlierSourcesAreScaledAgain) {
    Panner panner(2);
    ASSERT_TRUE(panner.Load(Figures()));
    panner.SetSourcePosition(0, At(0.0), false);
    panner.SetSourcePosition(1, At(0.0), false);
    EXPECT_NEAR(Response(panner, 0, true, 0.0f).data[0][3], 0.5f, 1e-5f);
    EXPECT_NEAR(Response(panner, 1, true, 0.0f).data[0][3], 0.70710678f, 1e-5f);
    EXPECT_NEAR(Response(panner, 0, true, 8.0f).data[1][100], 4.0f, 1e-5f);
    EXPECT_NEAR(Response(panner, 0, false, 8.0f).data[1][100], 0.0f, 1e-5f);
}

TEST(BinauralPanningSphericalHarmonics, RefusesOtherSets) {
    Panner panner(1);
    ASSERT_TRUE(panner.Load(Figures()));
    EXPECT_FALSE(panner.LoadFromFile("set.shb"));  // nothing reads such files yet
    EXPECT_FALSE(panner.Load(Figures().Wrong(Lume::hrtfNearfieldCompensationFilter, length)));
    EXPECT_THROW(panner.Load(Figures().Wrong(Lume::hrtfBinaural, 12)), orvandsp::OrvanDspException);
    EXPECT_THROW(panner.Load(Figures(Lume::Unnormalized)), orvandsp::OrvanDspException);
    EXPECT_EQ(panner.GetSphericalHarmonicInfo().numFrequencyBins, length);
    panner.SetSourcePosition(0, At(0.0), false);
    EXPECT_NEAR(Response(panner, 0, false, 0.0f).data[0][3], 0.70710678f, 1e-5f);
}

}  // namespace
