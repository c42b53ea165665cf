#include "pan/diffuse/decorrelated_mixing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using Lume::ComputeDecorrelatedMixing;

double Product(orvandsp::Matrix<float> const& m, unsigned int j, unsigned int k) {
    double product = 0.0;
    for (unsigned int i = 0; i < m.GetNumRows(); ++i)
        product += static_cast<double>(m[i][j]) * static_cast<double>(m[i][k]);
    return product;
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
