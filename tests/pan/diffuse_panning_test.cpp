#include "pan/diffuse/reverb_panning.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <set>
#include <vector>

#include "mix/signal_matrix.h"
#include "pan/diffuse/decorrelated_mixing.h"
#include "pan/panning_support.h"

namespace {

using Lume::ComputeDecorrelatedMixing;
using Lume::ComputeReverbMixingMatrix;
using orvandsp::Matrix;

constexpr std::size_t cycle = 1323;  // 30 ms at 44.1 kHz

double Product(Matrix<float> const& m, unsigned int j, unsigned int k) {
    double product = 0.0;
    for (unsigned int i = 0; i < m.GetNumRows(); ++i)
        product += static_cast<double>(m[i][j]) * static_cast<double>(m[i][k]);
    return product;
}

// Ground truth: with 4 n channels all gains are equal in magnitude, each loudspeaker has the power N / M, and each
// column of the matrix carries one of four sign patterns that are orthogonal to each other.
TEST(ComputeReverbMixingMatrix, EveryLoudspeakerGetsAnOrthogonalMixOfEqualPower) {
    for (const unsigned int channels : {4u, 8u, 12u, 16u}) {
        for (const unsigned int speakers : {1u, 2u, 4u, 5u, 8u, 12u, 64u}) {
            const Matrix<float> matrix = ComputeReverbMixingMatrix(channels, speakers);
            ASSERT_EQ(matrix.GetNumRows(), channels);
            ASSERT_EQ(matrix.GetNumColumns(), speakers);
            std::set<std::vector<float>> patterns;
            for (unsigned int j = 0; j < speakers; ++j) {
                std::vector<float> column;
                for (unsigned int i = 0; i < channels; ++i) {
                    EXPECT_NEAR(std::abs(matrix[i][j]), 1.0f / std::sqrt(static_cast<float>(speakers)), 1e-6f);
                    column.push_back(matrix[i][j]);
                }
                patterns.insert(column);
            }
            EXPECT_EQ(patterns.size(), std::min(speakers, 4u));
            for (auto const& a : patterns) {
                for (auto const& b : patterns) {
                    double product = 0.0;
                    for (unsigned int i = 0; i < channels; ++i) product += static_cast<double>(a[i] * b[i]);
                    EXPECT_NEAR(product, a == b ? static_cast<double>(channels) / speakers : 0.0, 1e-5);
                }
            }
        }
    }
}

/// The output of loudspeaker 0 after some samples of ones in all channels.
float Listen(Lume::Pan& panner, std::size_t samples, short const* active) {
    Channels in(panner.GetNumInputs(), samples, 1.0f), out(panner.GetNumOutputs(), samples, 9.0f);
    panner.Process(out.pointers.data(), in.pointers.data(), samples, active);
    return out.data[0].back();
}

// Red if silent inputs cut off the reverberator, if positions matter or are missing (under the sanitizers), or if a new
// number of channels doesn't fade in.
TEST(ReverbPanning, RingsOnAndFadesInAnew) {
    const short none[8] = {};
    const std::unique_ptr<Lume::Pan> panner(Lume::Pan::factory(8, 5, "nonsense", "diffuse"));
    ASSERT_NE(dynamic_cast<Lume::ReverbPanning*>(panner.get()), nullptr);
    panner->SetLoudspeakerPositions(nullptr);
    panner->SetSourcePosition(3, {1.0f, 2.0f, 3.0f}, true);
    panner->forceUpdate(true);
    EXPECT_EQ(Listen(*panner, cycle, none), 0.0f);
    EXPECT_NEAR(Listen(*panner, cycle + 1, none), -4.0f / std::sqrt(5.0f), 1e-5f);

    panner->SetInterpolationTime(1.0f);
    panner->SetSamplerate(88200.0f);
    panner->SetNumOutputs(4);
    EXPECT_EQ(Listen(*panner, 2 * cycle, none), 0.0f);
    EXPECT_LT(std::abs(Listen(*panner, cycle, none)), 1.1f);
    EXPECT_NEAR(Listen(*panner, cycle + 1, none), -4.0f / 2.0f, 1e-5f);

    // No number of channels is refused.
    panner->SetNumOutputs(0);
    panner->SetNumInputs(0);
    panner->Process(nullptr, nullptr, 64, none);
    panner->ProcessAdding(nullptr, nullptr, 64, none);
}

// Red if a copy of the basis comes twice, if its signs aren't those of a quadratic form, or if the basis isn't
// orthonormal.
TEST(DecorrelatedMixing, OutputsAreAsLittleCorrelatedAsTheChannelsAllow) {
    struct Case {
        unsigned int channels, outputs;
        double largest;  // correlation of two outputs of different groups
    };
    for (const auto& [channels, outputs, largest] :
         {Case{8, 8, 0.0}, Case{8, 64, 0.5}, Case{16, 24, 0.25}, Case{16, 64, 0.25}, Case{4, 8, 0.5},
          Case{12, 24, 0.82}, Case{6, 12, 0.82}, Case{10, 9, 0.0}, Case{2, 2, 0.0}}) {
        const auto mixing = ComputeDecorrelatedMixing(channels, std::vector<float>(outputs, 1.0f));
        for (unsigned int j = 0; j < outputs; ++j) {
            EXPECT_NEAR(Product(mixing, j, j), 1.0, 1e-6);
            for (unsigned int k = 0; k < j; ++k) {
                const double bound = j / channels == k / channels ? 0.0 : largest;
                EXPECT_LE(std::abs(Product(mixing, j, k)), bound + 1e-6) << channels << ": " << j << " " << k;
            }
        }
    }
}

TEST(DecorrelatedMixing, OutputsHaveTheirPowersAndChannelsEqualShares) {
    const std::vector<float> powers{8.0f, 8.0f / 3, 8.0f / 3, 8.0f / 3, 1.6f, 1.6f, 1.6f, 1.6f, 1.6f};
    const auto mixing = ComputeDecorrelatedMixing(8, powers);
    for (unsigned int j = 0; j < powers.size(); ++j) EXPECT_NEAR(Product(mixing, j, j), powers[j], 1e-5);
    for (unsigned int i = 0; i < 8; ++i) {
        double power = 0.0;
        for (unsigned int j = 0; j < powers.size(); ++j) power += std::pow(static_cast<double>(mixing[i][j]), 2);
        EXPECT_NEAR(power, 24.0 / 8.0, 1e-5) << "channel " << i;
    }
}

}  // namespace
